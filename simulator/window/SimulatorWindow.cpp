#include "simulator/window/SimulatorWindow.h"

#include "simulator/control/Json.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace vorrano::simulator {
namespace {

constexpr int kLinesKept = 400;
constexpr double kColdest = 32;
constexpr double kHottest = 104;
constexpr int kWidth = 420;
constexpr int kWireHeight = 170;
constexpr int kMargin = 11;
constexpr int kCableButtonWidth = 144;
constexpr int kDeskMargin = 12;
constexpr std::string_view kCarriageReturn = "\\r";
constexpr std::string_view kNul = "\\0";
const QString kToVorrano = QStringLiteral("\u2192 ");
const QString kFromVorrano = QStringLiteral("\u2190 ");
const QString kToService = QStringLiteral("\u21D2 ");

// What a person may want it to do wrong.
enum Trouble { None, Silent, Slow, Nonsense };

std::optional<Fault> faultOf(int trouble)
{
    Fault fault;
    switch (trouble) {
    case Silent:
        fault.kind = Fault::Kind::Silence;
        return fault;
    case Slow:
        fault.kind = Fault::Kind::Delay;
        fault.delay = std::chrono::milliseconds(1500);
        return fault;
    case Nonsense:
        fault.kind = Fault::Kind::Answer;
        fault.bytes = std::string(kNonsense);
        return fault;
    default:
        return std::nullopt;
    }
}

} // namespace

SimulatorWindow::SimulatorWindow(Simulator& simulator)
    : m_simulator(simulator)
    , m_probe(Qt::Horizontal)
{
    setWindowTitle(QStringLiteral("Simulated Vorrano"));
    build();
    connectControls();
    refresh();
    const auto desk = QGuiApplication::primaryScreen()->availableGeometry();
    adjustSize();
    move(desk.right() - width() - kDeskMargin, desk.top() + kDeskMargin * 3);
}

void SimulatorWindow::build()
{
    m_cable.setMinimumWidth(kCableButtonWidth);
    m_probe.setRange(static_cast<int>(kColdest), static_cast<int>(kHottest));
    m_faults.addItems({QStringLiteral("As it should"), QStringLiteral("Not at all"), QStringLiteral("Slowly"),
                       QStringLiteral("Nonsense")});
    m_wire.setReadOnly(true);
    m_wire.setMaximumBlockCount(kLinesKept);
    m_wire.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_wire.setFixedHeight(kWireHeight);
    m_wire.setAccessibleName(QStringLiteral("What passes"));
    m_wire.setPlaceholderText(QStringLiteral("What passes will stand here."));
    m_wire.setTabChangesFocus(true);

    // The keyboard goes from one to the next in the order in which they are added here.
    auto* const rows = new QVBoxLayout;
    rows->addWidget(&m_cable, 0, Qt::AlignHCenter);
    rows->addLayout(form());
    rows->addWidget(&m_wire);
    rows->addWidget(new QLabel(
        QStringLiteral("%1to the Vorrano   %2from it   %3to the service").arg(kToVorrano, kFromVorrano, kToService)));
    rows->setContentsMargins(kMargin, 0, kMargin, kMargin);
    // The cable comes from the window's edge.
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, kMargin, 0, 0);
    whole->addWidget(&m_face);
    whole->addLayout(rows);
    setFixedWidth(std::max(kWidth, sizeHint().width()));
}

QFormLayout* SimulatorWindow::form()
{
    auto* const form = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->addRow(QStringLiteral("&Temperature:"), &m_probe);
    form->addRow(QStringLiteral("It &answers:"), &m_faults);
    if (const auto& accounts = m_simulator.service().accounts(); !accounts.empty()) {
        const auto& values = accounts.front().values;
        auto* const account = new QLabel(
            QStringLiteral("account %1, password %2")
                .arg(QString::fromStdString(values.at("AccountLogin")), QString::fromStdString(values.at("Password"))));
        account->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        account->setFocusPolicy(Qt::StrongFocus);
        form->addRow(QStringLiteral("To sign in:"), account);
    }
    return form;
}

void SimulatorWindow::connectControls()
{
    connect(&m_cable, &QPushButton::clicked, this, [this] {
        if (m_simulator.isPlugged()) {
            m_simulator.unplug();
        } else {
            m_simulator.plug();
        }
    });
    connect(&m_probe, &QSlider::valueChanged, this, [this](int fahrenheit) {
        auto memory = m_simulator.device().memory();
        memory.fahrenheit = fahrenheit;
        m_simulator.setMemory(memory);
    });
    connect(&m_faults, &QComboBox::currentIndexChanged, this,
            [this](int trouble) { m_simulator.setOnlyFault(faultOf(trouble)); });
    m_simulator.setListener([this](const QJsonObject& event) { heard(event); });
}

void SimulatorWindow::heard(const QJsonObject& event)
{
    const auto kind = event["event"].toString();
    const auto bytes = bytesFromJson(event["bytes"].toString());
    if (kind == "received") {
        write(kToVorrano, m_wireText.received(bytes));
    } else if (kind == "sent") {
        write(kFromVorrano, m_wireText.sent(bytes));
    } else if (kind == "request") {
        write(kToService, WireText::request(bytesFromJson(event["target"].toString())));
        m_growing.clear();
    } else if (kind == "unplugged") {
        m_wireText.cablePulled();
        m_growing.clear();
    }
    const auto mode = m_simulator.device().mode();
    m_wireText.setInBootloader(mode == SimulatedVorrano::Mode::Bootloader || mode == SimulatedVorrano::Mode::Image);
    if (mode == SimulatedVorrano::Mode::Normal) {
        m_wireText.setRunning();
    }
    refresh();
}

// What comes in several chunks the same way stands on one line, up to the end of a text.
void SimulatorWindow::write(const QString& direction, const std::string& text)
{
    if (m_growing != direction) {
        m_wire.appendPlainText(direction);
    }
    m_wire.moveCursor(QTextCursor::End);
    m_wire.insertPlainText(QString::fromStdString(text));
    m_wire.ensureCursorVisible();
    m_growing = text.ends_with(kCarriageReturn) || text.ends_with(kNul) ? QString() : direction;
}

void SimulatorWindow::refresh()
{
    const bool plugged = m_simulator.isPlugged();
    m_face.display(m_simulator.device(), plugged);
    // It may have been warmed by somebody else.
    const QSignalBlocker quiet(&m_probe);
    m_probe.setValue(static_cast<int>(std::clamp(m_simulator.device().memory().fahrenheit, kColdest, kHottest)));
    m_cable.setText(plugged ? QStringLiteral("Pull the &Cable Out") : QStringLiteral("Plug the &Cable In"));
    m_cable.setAccessibleDescription(plugged ? QStringLiteral("The cable is in") : QStringLiteral("The cable is out"));
}

} // namespace vorrano::simulator
