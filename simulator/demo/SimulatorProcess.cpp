#include "simulator/demo/SimulatorProcess.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vorrano::demo {
namespace {

namespace fs = std::filesystem;

// Who may sign in at once; the simulator's window says so.
constexpr const char* kAccount = "demo:vorrano";

void require(bool succeeded, const char* what)
{
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

std::string newFolder()
{
    auto name = (fs::temp_directory_path() / "vorrano-demo-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "folder for the simulator");
    return name;
}

} // namespace

SimulatorProcess::SimulatorProcess()
    : m_folder(newFolder())
    , m_controlPath(m_folder + "/control")
{
    try {
        start();
        const auto ready = nlohmann::json::parse(firstLine());
        m_servicePort = ready.at("service").at("port").get<std::uint16_t>();
    } catch (...) {
        end();
        throw;
    }
}

SimulatorProcess::~SimulatorProcess() { end(); }

void SimulatorProcess::start()
{
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    require(pipe2(in.data(), O_CLOEXEC) == 0, "pipe");
    m_toSimulator = in[1];
    require(pipe2(out.data(), O_CLOEXEC) == 0, "pipe");
    m_fromSimulator = out[0];

    const auto program = (fs::read_symlink("/proc/self/exe").parent_path() / "vorrano-simulator").string();
    std::vector<std::string> texts{program,     "--control", m_controlPath,       "--window",
                                   "--account", kAccount,    "--until-stdin-ends"};
    std::vector<char*> arguments;
    arguments.reserve(texts.size() + 1);
    for (auto& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    errno = posix_spawn(&m_process, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    const int error = errno;
    ::close(in[0]);
    ::close(out[1]);
    errno = error;
    require(error == 0, program.c_str());
}

std::string SimulatorProcess::firstLine() const
{
    std::string line;
    char c = 0;
    while (::read(m_fromSimulator, &c, 1) == 1) {
        if (c == '\n') {
            return line;
        }
        line.push_back(c);
    }
    throw std::runtime_error("the simulator did not start");
}

void SimulatorProcess::end() noexcept
{
    // The end of its standard input is the simulator's word to end.
    ::close(m_toSimulator);
    ::close(m_fromSimulator);
    if (m_process > 0) {
        waitpid(m_process, nullptr, 0);
    }
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

} // namespace vorrano::demo
