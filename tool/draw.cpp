// SPDX-License-Identifier: Apache-2.0
// `sluice draw`: a picture of a graph.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "bridge/host.h"
#include "host/standalone_host.h"
#include "persistence/file_save.h"
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/interrupts.h"
#include "tool/picture_writers.h"
#include "tool/run_report.h"

extern char** environ;

namespace tidemark::tool {

namespace {

namespace fs = std::filesystem;

/// A folder that goes with the object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (fs::temp_directory_path() / "sluice-draw-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw UsageError("no temporary folder can be made");
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::string file(const char* name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

/// Runs a program of the search path; false when there is none of that name.
bool runProgram(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    // What the picture is written to belongs to the picture.
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error =
        ::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error == ENOENT) return false;
    if (error != 0) throw UsageError(words[0] + " cannot be started");
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw UsageError(words[0] + " could not make the picture");
    }
    return true;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeWhole(const std::string& path, const std::string& content) {
    const WriteSection section;
    sluice::graph::FileSave file(path);
    if (!file.reason().empty() || !file.write(content) || !file.commit()) {
        throw UsageError("\"" + path + "\" could not be written: " + file.reason());
    }
}

std::string pngOf(const Graph& graph, const Picture& picture) {
    constexpr double widestPicture = 8000; // programs refuse much larger ones
    const TemporaryFolder folder;
    const std::string png = folder.file("graph.png");
    const std::string svg = folder.file("graph.svg");
    const double longest = std::max(picture.whole().width, picture.whole().height) + 100;
    const std::string zoom = text::format("%.4f", std::min(1.0, widestPicture / longest));
    writeWhole(svg, svgOf(picture, graph.scene));
    if (runProgram({"rsvg-convert", "--unlimited", "-z", zoom, "-o", png, svg})) {
        return contentOf(png);
    }
    const std::string dot = folder.file("graph.dot");
    writeWhole(dot, dotOf(graph.scene));
    if (runProgram({"dot", "-Tpng", "-o", png, dot})) return contentOf(png);
    throw UsageError("a PNG needs rsvg-convert (package librsvg2-bin) or dot (package graphviz), "
                     "and neither is installed; SVG and DOT need nothing");
}

std::string formatOf(const DrawOptions& options) {
    const Array<TM_String> known{"svg", "dot", "png"};
    std::string format = options.format;
    if (format.empty() && options.out.empty()) format = "svg";
    if (format.empty()) {
        format = text::toLower(fs::path(options.out).extension().string());
        if (!format.empty()) format.erase(0, 1);
        if (format == "gv") format = "dot";
    }
    if (known.contains(format)) return format;
    throw UsageError("\"" + options.out + "\" does not end in .svg, .png or .dot; --format names " +
                     "one of svg, png, dot");
}

/// Runs the graph and tells what it says; the status for the end. What nodes print must not get
/// into a picture on standard output, so it goes where messages go.
int runForPicture(Graph& graph, host::StandaloneHost& host) {
    using Line = host::StandaloneHost::Line;
    using sluice::graph::RunOutcome;
    host.setFileGate(host::FileGate::writingBelow("."));
    host.setSink([](Line kind, const TM_String& line) {
        if (kind == Line::report) console::report(tidemark::graph::messageLevelError, line);
        if (kind == Line::print || kind == Line::message) console::line(line);
    });
    watchSignals();
    {
        const RunSection section(graph.scene);
        graph.scene.run();
    }
    const std::vector<NodeMessage> messages = collectMessages(graph.scene, nullptr);
    printMessages(messages, tidemark::graph::messageLevelWarning);
    if (wasSignalled()) return exitInterrupt;
    const RunOutcome outcome = graph.scene.lastOutcome();
    if (outcome == RunOutcome::outOfMemory) return exitLimit;
    const bool fails = std::any_of(messages.begin(), messages.end(), [](const NodeMessage& entry) {
        return FailLevel().isReachedBy(entry.message.level);
    });
    return fails || outcome == RunOutcome::exception ? exitFailed : exitDone;
}

} // namespace

int drawGraph(const DrawOptions& options) {
    const std::string format = formatOf(options);
    if (isSameFile(options.graph, options.out)) {
        throw UsageError("\"" + options.out + "\" is the graph: draw to another file");
    }
    host::StandaloneHost host;
    bridge::setHost(&host);
    Graph graph;
    if (!readGraph(options.graph, graph)) {
        printReports(host);
        return console::leave(exitBadUse);
    }
    int status = printReports(host) ? exitFailed : exitDone;
    if (options.runs) status = std::max(status, runForPicture(graph, host));
    if (status == exitInterrupt) return console::leave(status); // no picture of half a run
    const Picture picture(graph.scene, graph.layout);
    const std::string content = format == "svg"   ? svgOf(picture, graph.scene)
                                : format == "dot" ? dotOf(graph.scene)
                                                  : pngOf(graph, picture);
    if (options.out.empty()) {
        console::out(content);
    } else {
        writeWhole(options.out, content);
    }
    return console::leave(status);
}

} // namespace tidemark::tool
