#include "support/FakeLayouts.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

namespace {

template <class Loaded>
std::shared_ptr<Loaded> lastAlive(const std::vector<std::pair<std::string, std::weak_ptr<Loaded>>>& all,
                                  std::string_view name)
{
    const auto fits = [&](const auto& loaded) { return loaded.first == name && !loaded.second.expired(); };
    const auto found = std::find_if(all.rbegin(), all.rend(), fits);
    return found == all.rend() ? nullptr : found->second.lock();
}

template <class Loaded>
Loaded& lastAliveOrFail(const std::vector<std::pair<std::string, std::weak_ptr<Loaded>>>& all, std::string_view name)
{
    if (const auto found = lastAlive(all, name)) {
        return *found;
    }
    const auto what = "nothing named " + std::string(name) + " is loaded and alive";
    ADD_FAILURE() << what;
    throw std::logic_error(what);
}

} // namespace

FakeWindow::FakeWindow(FakeLayouts& layouts, std::string name, std::shared_ptr<FakeView> view)
    : m_layouts(&layouts)
    , m_name(std::move(name))
    , m_view(std::move(view))
{
    m_view->setWindow(this);
}

FakeWindow::~FakeWindow()
{
    m_view->setWindow(nullptr);
    if (m_sheet) {
        m_sheet->m_sheetParent = nullptr;
        m_sheet->disappear();
    }
    disappear();
}

std::shared_ptr<platform::View> FakeWindow::view() { return m_view; }

void FakeWindow::show()
{
    m_visible = true;
    if (m_layouts != nullptr) {
        m_layouts->appeared(*this);
    }
}

void FakeWindow::close()
{
    if (m_sheetParent != nullptr) {
        m_sheetParent->endSheet(*this, 0);
        return;
    }
    if (m_sheet) {
        endSheet(*m_sheet, 0);
    }
    disappear();
}

void FakeWindow::disappear()
{
    m_visible = false;
    if (m_layouts != nullptr) {
        m_layouts->disappeared(*this);
    }
}

void FakeWindow::beginSheet(const std::shared_ptr<platform::Window>& sheet, std::function<void(int)> completion)
{
    EXPECT_EQ(m_sheet, nullptr) << m_name << " has a sheet already";
    m_sheet = std::dynamic_pointer_cast<FakeWindow>(sheet);
    m_completion = std::move(completion);
    m_sheet->m_sheetParent = this;
    m_sheet->show();
}

void FakeWindow::endSheet(platform::Window& sheet, int returnCode)
{
    if (&sheet != m_sheet.get()) {
        ADD_FAILURE() << m_name << " has no such sheet";
        return;
    }
    const auto ended = std::exchange(m_sheet, nullptr);
    ended->m_sheetParent = nullptr;
    ended->disappear();
    if (auto completion = std::exchange(m_completion, nullptr)) {
        m_layouts->m_mainQueue.async([told = std::move(completion), returnCode] { told(returnCode); });
    }
}

void FakeWindow::activate()
{
    EXPECT_TRUE(m_visible) << m_name << " is not on the screen";
    m_layouts->m_active = this;
}

bool FakeWindow::closeAsPerson()
{
    if (!m_visible || m_view->isBlocked()) {
        return false;
    }
    if (m_sheetParent != nullptr) {
        m_sheetParent->endSheet(*this, 0);
        return true;
    }
    disappear();
    if (m_layouts->m_visible.empty()) {
        m_layouts->m_programEnded = true;
    }
    return true;
}

FakeLayouts::FakeLayouts(FakeMainQueue& mainQueue)
    : m_mainQueue(mainQueue)
{}

FakeLayouts::~FakeLayouts()
{
    for (const auto& loaded : m_windows) {
        if (const auto window = loaded.second.lock()) {
            window->m_layouts = nullptr;
        }
    }
}

std::shared_ptr<FakeView> FakeLayouts::makeView(std::string_view name)
{
    EXPECT_TRUE(m_mainQueue.isMainThread()) << "layouts are the main thread's";
    if (m_missing.contains(name)) {
        throw platform::LayoutError("there is no layout named " + std::string(name));
    }
    m_loaded.emplace_back(name);
    auto view = std::make_shared<FakeView>(m_mainQueue);
    m_views.emplace_back(name, view);
    if (const auto content = m_contents.find(name); content != m_contents.end()) {
        content->second(*view);
    }
    return view;
}

std::shared_ptr<platform::View> FakeLayouts::loadView(std::string_view name) { return makeView(name); }

std::shared_ptr<platform::Window> FakeLayouts::loadWindow(std::string_view name)
{
    auto window = std::make_shared<FakeWindow>(*this, std::string(name), makeView(name));
    m_windows.emplace_back(name, window);
    return window;
}

std::shared_ptr<platform::Window> FakeLayouts::keyWindow()
{
    if (m_active != nullptr) {
        return m_active->shared_from_this();
    }
    return m_visible.empty() ? nullptr : m_visible.back()->shared_from_this();
}

FakeView& FakeLayouts::view(std::string_view name) { return lastAliveOrFail(m_views, name); }

FakeWindow& FakeLayouts::window(std::string_view name) { return lastAliveOrFail(m_windows, name); }

bool FakeLayouts::hasView(std::string_view name) const { return lastAlive(m_views, name) != nullptr; }

bool FakeLayouts::hasWindow(std::string_view name) const { return lastAlive(m_windows, name) != nullptr; }

void FakeLayouts::prepare(std::string_view name, std::function<void(FakeView&)> content)
{
    m_contents.insert_or_assign(std::string(name), std::move(content));
}

void FakeLayouts::remove(std::string_view name) { m_missing.emplace(name); }

void FakeLayouts::appeared(FakeWindow& window)
{
    std::erase(m_visible, &window);
    m_visible.push_back(&window);
}

void FakeLayouts::disappeared(FakeWindow& window)
{
    std::erase(m_visible, &window);
    if (m_active == &window) {
        m_active = nullptr;
    }
}

} // namespace vorrano::support
