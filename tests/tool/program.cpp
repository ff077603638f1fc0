// SPDX-License-Identifier: Apache-2.0
// Starting the program, reading its output while it runs, and ending it.
#include "tool/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace sluice_test {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void becomeProgram(const Start& start, int out, int err) {
    if (!start.outFile.empty()) out = open(start.outFile.c_str(), O_WRONLY | O_CREAT, 0666);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    for (const char* name : {"SLUICE_THREADS", "NO_COLOR"}) unsetenv(name);
    setenv("TERM", "xterm", 1);
    for (const auto& [name, value] : start.environment) setenv(name.c_str(), value.c_str(), 1);
    if (!start.folder.empty() && chdir(start.folder.c_str()) != 0) _exit(126);
    std::vector<char*> words{const_cast<char*>(SLUICE_PROGRAM)};
    for (const std::string& word : start.arguments)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    execv(SLUICE_PROGRAM, words.data());
    _exit(127);
}

void readBoth(int out, int err, Ended& ended) {
    std::array<pollfd, 2> files{pollfd{out, POLLIN, 0}, pollfd{err, POLLIN, 0}};
    std::array<std::string*, 2> texts{&ended.out, &ended.err};
    int open = 2;
    while (open > 0 && poll(files.data(), files.size(), -1) >= 0) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (files[i].fd < 0 || files[i].revents == 0) continue;
            char buffer[16384];
            const ssize_t count = read(files[i].fd, buffer, sizeof(buffer));
            if (count > 0) {
                texts[i]->append(buffer, static_cast<std::size_t>(count));
            } else {
                files[i].fd = -1;
                --open;
            }
        }
    }
}

void sendSignals(const Start& start, pid_t child) {
    std::this_thread::sleep_for(std::chrono::duration<double>(start.signalAfter));
    for (int i = 0; i < start.signalCount; ++i) {
        if (i > 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        kill(child, start.signal);
    }
}

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

} // namespace

Json Ended::json() const {
    Json json = Json::parse(out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << "not one JSON document: " << out << err;
    return json;
}

Ended run(const Start& start) {
    int out[2];
    int err[2];
    Ended ended;
    const bool opened = start.terminal ? openpty(&err[0], &err[1], nullptr, nullptr, nullptr) == 0
                                       : pipe2(err, O_CLOEXEC) == 0;
    if (!opened || pipe2(out, O_CLOEXEC) != 0) return ended;
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) becomeProgram(start, start.sameTerminal ? err[1] : out[1], err[1]);
    close(out[1]);
    close(err[1]);
    std::thread signals;
    if (start.signal != 0) signals = std::thread([&start, child] { sendSignals(start, child); });
    readBoth(out[0], err[0], ended);
    // The child is reaped after the signals, so that its number can not belong to another.
    if (signals.joinable()) signals.join();
    int status = 0;
    waitpid(child, &status, 0);
    close(out[0]);
    close(err[0]);
    ended.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return ended;
}

Ended run(std::initializer_list<std::string> arguments) { return run(Start{arguments}); }

ProgramTest::ProgramTest() {
    std::string pattern = (fs::temp_directory_path() / "sluice_tool_XXXXXX").string();
    if (mkdtemp(pattern.data())) folder_ = fs::canonical(pattern);
}

ProgramTest::~ProgramTest() {
    std::error_code error;
    fs::permissions(folder_, fs::perms::owner_all, error);
    fs::remove_all(folder_, error);
}

std::string ProgramTest::file(const std::string& name, const std::string& content) const {
    std::ofstream(folder_ / name, std::ios::binary) << content;
    return path(name);
}

std::string ProgramTest::read(const std::string& name) const { return readFile(folder_ / name); }

Ended ProgramTest::sluice(std::initializer_list<std::string> arguments) const {
    return sluice(Start{arguments});
}

Ended ProgramTest::sluice(Start start) const {
    if (start.folder.empty()) start.folder = folder_.string();
    return run(start);
}

GraphText& GraphText::node(const std::string& name, const std::string& type,
                           std::vector<Input> inputs) {
    nodes_ += "<node><name>" + name + "</name><type>" + type + "</type><inputs>";
    for (const Input& input : inputs) {
        nodes_ += "<input><name>" + input.name + "</name>";
        if (!input.type.empty()) {
            nodes_ += "<type>" + input.type + "</type><value>" + input.value + "</value>";
        }
        nodes_ += "</input>";
    }
    nodes_ += "</inputs></node>\n";
    return *this;
}

GraphText& GraphText::link(const std::string& source, const std::string& target) {
    links_ += "<connection><source>root." + source + "</source><target>root." + target +
              "</target></connection>\n";
    return *this;
}

std::string GraphText::text() const {
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<scene><nodes><node><name>root</name>"
           "<type/><inputs/><nodes>\n" +
           nodes_ + "</nodes></node></nodes><connections>\n" + links_ + "</connections></scene>\n";
}

std::string sumGraph() {
    return GraphText()
        .node("A", "Real", {{"in", "real", "2.5"}})
        .node("B", "Integer", {{"in", "integer", "3"}})
        .node("Sum", "Add")
        .node("E", "Evaluator", {{"evaluate", "", ""}})
        .link("A.real", "Sum.in0")
        .link("B.integer", "Sum.in1")
        .link("Sum.result", "E.evaluate")
        .text();
}

std::string sleepingGraph(int milliseconds) {
    return GraphText()
        .node("A", "Real", {{"in", "real", "1"}})
        .node("Rest", "Sleep", {{"milisecs", "integer", std::to_string(milliseconds)}})
        .node("E", "Evaluator", {{"evaluate", "", ""}})
        .link("A.real", "Rest.in")
        .link("Rest.through", "E.evaluate")
        .text();
}

} // namespace sluice_test
