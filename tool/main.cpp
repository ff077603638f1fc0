// SPDX-License-Identifier: Apache-2.0
// The program `sluice`: its sub-commands, their options, and how it fails.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <new>

#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/interrupts.h"
#include "tool/library.h"
#include "tool/run_options.h"

namespace tidemark::tool {

namespace {

constexpr const char* versionText = "sluice " SLUICE_VERSION;

/// The texts that need a second look after parsing.
struct RunTexts {
    std::string frames;
    std::string failLevel = "error";
    std::string progress = "auto";
    std::string maxMemory;
};

/// Everything that the command line fills.
struct CommandLine {
    RunOptions run;
    RunTexts runTexts;
    NodesOptions nodes;
    DescribeOptions describe;
    ReferenceOptions reference;
    CheckOptions check;
    std::string checkFailLevel = "error";
    ConvertOptions convert;
    DrawOptions draw;
    DiffOptions diff;
    CompletionOptions completion;
    std::vector<std::string> libraries;
    bool noColor = false;
};

CLI::Validator aboveZero(const char* what) {
    const auto test = [what](const std::string& word) {
        const bool good = text::toDouble(word) > 0.0 && std::isfinite(text::toDouble(word));
        return good ? std::string() : "\"" + word + "\" is not " + what;
    };
    return CLI::Validator(test, "");
}

void addRunPins(CLI::App& app, RunOptions& run) {
    app.add_option("--set", run.settings,
                   "Set a pin before the run: PIN=VALUE, or PIN:TYPE=VALUE; repeatable")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false)
        ->type_name("PIN=VALUE");
    app.add_option("--set-file", run.settingFile, "Set the pins of a JSON object, before any --set")
        ->type_name("FILE");
    app.add_option("--get", run.getPins, "Print what a pin holds after the run; repeatable")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false)
        ->type_name("PIN");
    app.add_option("--pull", run.pullPins,
                   "Evaluate an output as if an evaluator were wired to it, and print it; "
                   "repeatable")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false)
        ->type_name("PIN");
}

void addRunControl(CLI::App& app, RunOptions& run, RunTexts& texts) {
    app.add_option("-f,--frames", texts.frames,
                   "Run once per frame: 1-100, 1-100x10, 1,5,9; negatives too")
        ->type_name("RANGE");
    app.add_flag("--keep-going", run.keepsGoing, "Go on after a frame that failed");
    app.add_option("-j,--threads", run.threads, "Number of threads; 0: all processors")
        ->envname("SLUICE_THREADS")
        ->type_name("N");
    app.add_option("--save", run.saveFile, "Write the graph after the run")->type_name("FILE");
    app.add_flag("--dry-run", run.dryRun, "Read and check, list evaluators and pulls, run nothing")
        ->excludes("--profile")
        ->excludes("--trace");
    app.add_flag("--no-sleep", run.noSleep, "Nodes that sleep return at once");
}

void addRunReports(CLI::App& app, RunOptions& run, RunTexts& texts) {
    app.add_flag("--json", run.json, "Print one JSON document");
    app.add_flag("--profile", run.profile, "Tell the time, calls and memory of each node");
    app.add_option("--trace", run.traceFile, "Write what ran when, for Chrome's trace viewer")
        ->type_name("FILE");
    app.add_option("--verbosity", run.verbosity, "Highest message level shown, 1 to 5; default 3")
        ->check(CLI::Range(1, 5))
        ->type_name("N");
    app.add_option("--fail-on", texts.failLevel,
                   "Least grave level that fails: critical, error (default), warning")
        ->type_name("LEVEL");
    app.add_option("--progress", texts.progress, "auto (default), plain, json or none")
        ->type_name("FORM");
}

void addRunLimits(CLI::App& app, RunOptions& run, RunTexts& texts) {
    app.add_option("--timeout", run.timeoutSeconds, "Longest time of the run")
        ->check(aboveZero("a number of seconds above 0"))
        ->type_name("SECONDS");
    app.add_option("--max-memory", texts.maxMemory, "Most memory; K, M and G are understood")
        ->type_name("BYTES");
    app.add_option("--max-elements", run.maxElements, "Most elements in one array")
        ->check(aboveZero("a number above 0"))
        ->type_name("N");
    auto* root = app.add_option("--root", run.root, "Let nodes reach files only below a folder")
                     ->type_name("DIR");
    app.add_flag("--no-write", run.noWrite, "Let nodes write no files");
    app.add_flag("--trust", run.trust, "Let nodes reach all files")->excludes(root);
}

CLI::App* addCommand(CLI::App& app, CommandLine& line, const char* name, const char* help) {
    CLI::App* command = app.add_subcommand(name, help);
    command->set_version_flag("--version", versionText, "Print the version");
    command->footer(exitStatusHelp);
    command->add_flag("--no-color", line.noColor, "Use no colours, even on a terminal");
    command
        ->add_option("--library", line.libraries,
                     "Offer every graph file below a folder as a node type; repeatable")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false)
        ->type_name("DIR");
    command->allow_extras();
    return command;
}

void addTypeCommands(CLI::App& app, CommandLine& line) {
    CLI::App* nodes = addCommand(app, line, "nodes", "List the node types");
    nodes->add_option("--category", line.nodes.category, "Only types of a category, or below it")
        ->type_name("C");
    nodes->add_option("--search", line.nodes.search, "Only types that speak of a word")
        ->type_name("WORD");
    nodes->add_flag("--json", line.nodes.json, "Print one JSON document");

    CLI::App* describe = addCommand(app, line, "describe", "Tell everything about one node type");
    describe->add_option("TYPE", line.describe.type, "The node type")->required();
    auto* json = describe->add_flag("--json", line.describe.json, "Print one JSON document");
    auto* html = describe->add_flag("--html", line.describe.html, "Print the type's manual page")
                     ->excludes(json);
    describe->add_flag("--wiki", line.describe.wiki, "Print the page in the markup of the wiki")
        ->excludes(json)
        ->excludes(html);

    CLI::App* reference =
        addCommand(app, line, "reference", "Write the reference of all node types, as web pages");
    reference->add_option("DIR", line.reference.folder, "The folder to write it into")->required();
}

void addFileCommands(CLI::App& app, CommandLine& line) {
    CLI::App* check =
        addCommand(app, line, "check", "Read a graph and report what is wrong with it");
    check->add_option("GRAPH", line.check.graph, "The graph's file")->required();
    check
        ->add_option("--fail-on", line.checkFailLevel,
                     "Least grave level that fails: critical, error (default), warning")
        ->type_name("LEVEL");
    check->add_flag("--json", line.check.json, "Print one JSON document");

    CLI::App* convert =
        addCommand(app, line, "convert", "Read a graph and write it in today's form");
    convert->add_option("IN", line.convert.in, "The graph's file")->required();
    convert->add_option("OUT", line.convert.out, "The file to write")->required();

    CLI::App* draw = addCommand(app, line, "draw", "Draw a graph as SVG, PNG or DOT");
    draw->add_option("GRAPH", line.draw.graph, "The graph's file")->required();
    draw->add_option("-o,--output", line.draw.out,
                     "The picture's file, ending in .svg, .png or .dot; without: SVG on standard "
                     "output")
        ->type_name("FILE");
    draw->add_option("--format", line.draw.format, "svg, png or dot, whatever the file's ending")
        ->check(CLI::IsMember({"svg", "png", "dot"}))
        ->type_name("FORMAT");
    draw->add_flag("--run", line.draw.runs, "Run the graph first: show results and errors");

    CLI::App* diff = addCommand(app, line, "diff", "Tell what differs between two graphs");
    diff->add_option("A", line.diff.a, "The one graph's file")->required();
    diff->add_option("B", line.diff.b, "The other graph's file")->required();
    diff->add_flag("--no-layout", line.diff.ignoresLayout, "Do not compare positions and notes");
    diff->add_flag("--json", line.diff.json, "Print one JSON document");
}

void addCompletion(CLI::App& app, CommandLine& line) {
    CLI::App* completion =
        addCommand(app, line, "completion", "Print the completion script of a shell");
    auto* shell = completion->add_option("SHELL", line.completion.shell, "bash or zsh")
                      ->check(CLI::IsMember({"bash", "zsh"}));
    completion->add_option("--pins", line.completion.pinsOf, "List the pins of a graph instead")
        ->type_name("GRAPH")
        ->excludes(shell);
    completion->add_flag("--outputs", line.completion.outputsOnly, "With --pins: only outputs");
}

void addCommands(CLI::App& app, CommandLine& line) {
    CLI::App* run = addCommand(app, line, "run", "Read a graph, run it and report");
    run->add_option("GRAPH", line.run.graph, "The graph's file")->required();
    addRunPins(*run, line.run);
    addRunReports(*run, line.run, line.runTexts);
    addRunControl(*run, line.run, line.runTexts);
    addRunLimits(*run, line.run, line.runTexts);

    addTypeCommands(app, line);
    addFileCommands(app, line);
    addCompletion(app, line);
}

std::vector<CommandWords> wordsOf(const CLI::App& app) {
    std::vector<CommandWords> words;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        CommandWords entry{command->get_name(), command->get_description(), {}};
        for (const CLI::Option* option : command->get_options()) {
            const bool takesValue = option->get_items_expected_max() > 0;
            for (const std::string& name : option->get_lnames()) {
                entry.options.emplace_back("--" + name + (takesValue ? "=" : ""),
                                           option->get_description());
            }
        }
        words.push_back(std::move(entry));
    }
    return words;
}

/// Single letters that have to be added, removed, replaced or swapped with their neighbour.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> steps(a.size() + 1,
                                                std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1,
                                    steps[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[a.size()][b.size()];
}

/// Names the nearest of `known`, however far it is.
std::string didYouMean(const std::string& word, const Array<TM_String>& known) {
    constexpr std::size_t longestWord = 100;
    if (word.size() > longestWord || known.empty()) return "; see --help";
    const TM_String* nearest = known.begin();
    for (const TM_String& candidate : known) {
        if (distance(word, candidate) < distance(word, *nearest)) nearest = &candidate;
    }
    return " (did you mean \"" + *nearest + "\"?)";
}

/// The word without a value behind "=".
std::string optionName(const std::string& word) { return word.substr(0, word.find('=')); }

/// Says what is wrong with a word that nothing expected.
[[noreturn]] void refuseWord(const CLI::App& app, const CLI::App& command,
                             const std::string& word) {
    Array<TM_String> known;
    const bool isOption = word.size() > 1 && word[0] == '-';
    if (isOption) {
        for (const CommandWords& words : wordsOf(app)) {
            if (words.name != command.get_name()) continue;
            for (const auto& option : words.options) known.append(optionName(option.first));
        }
    }
    throw UsageError("sluice " + command.get_name() + ": " +
                     (isOption ? "unknown option \"" : "unexpected argument \"") + word + "\"" +
                     (isOption ? didYouMean(optionName(word), known) : ""));
}

/// Names the nearest sub-command when the first word is none.
void checkCommand(const CLI::App& app, int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool isOption = !word.empty() && word[0] == '-';
        if (isOption && (app.get_option_no_throw(word) || word == "--")) continue;
        Array<TM_String> known;
        for (const CommandWords& words : wordsOf(app)) {
            if (words.name == word) return;
            if (!isOption) known.append(words.name);
        }
        if (isOption) known = {"--help", "--version", "--no-color"};
        throw UsageError(std::string("unknown ") + (isOption ? "option" : "command") + " \"" +
                         word + "\"" + didYouMean(word, known));
    }
}

void finishOptions(CommandLine& line) {
    if (!line.runTexts.frames.empty()) line.run.frames.emplace(line.runTexts.frames);
    line.run.failLevel = parseFailLevel(line.runTexts.failLevel);
    line.run.progress = parseProgress(line.runTexts.progress);
    if (!line.runTexts.maxMemory.empty()) line.run.maxMemory = parseBytes(line.runTexts.maxMemory);
    line.check.failLevel = parseFailLevel(line.checkFailLevel);
}

int runCommand(const CLI::App& app, const CLI::App& command, const CommandLine& line) {
    const std::string& name = command.get_name();
    if (name == "run") return runGraph(line.run);
    if (name == "nodes") return listNodes(line.nodes);
    if (name == "describe") return describeType(line.describe);
    if (name == "reference") return writeReference(line.reference);
    if (name == "check") return checkGraph(line.check);
    if (name == "convert") return convertGraph(line.convert);
    if (name == "draw") return drawGraph(line.draw);
    if (name == "diff") return diffGraphs(line.diff);
    if (line.completion.shell.empty() && line.completion.pinsOf.empty()) {
        throw UsageError("sluice completion: name a shell, bash or zsh");
    }
    return completion(line.completion, wordsOf(app));
}

int parseAndRun(int argc, char** argv) {
    CommandLine line;
    CLI::App app("Run, inspect and convert dataflow graphs.", "sluice");
    app.set_version_flag("--version", versionText, "Print the version");
    app.add_flag("--no-color", line.noColor, "Use no colours, even on a terminal");
    app.require_subcommand(1);
    app.footer(exitStatusHelp);
    addCommands(app, line);
    checkCommand(app, argc, argv);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version are thrown as well.
        if (error.get_exit_code() == 0) {
            app.exit(error, std::cout, std::cerr);
            std::cout.flush();
            return console::leave(exitDone);
        }
        throw UsageError(std::string(error.what()) + "; see --help");
    }
    const CLI::App& command = *app.get_subcommands().front();
    const std::vector<std::string> unexpected = command.remaining();
    if (!unexpected.empty()) refuseWord(app, command, unexpected.front());
    if (line.noColor) console::forbidColor();
    setLibraries(line.libraries);
    finishOptions(line);
    return runCommand(app, command, line);
}

int guarded(int argc, char** argv) {
    using tidemark::graph::messageLevelCritical;
    using tidemark::graph::messageLevelError;
    try {
        return parseAndRun(argc, argv);
    } catch (const UsageError& error) {
        console::progressLine("");
        console::report(messageLevelError, error.what());
        return exitBadUse;
    } catch (const std::bad_alloc&) {
        console::progressLine("");
        console::report(messageLevelCritical, "out of memory");
        return exitLimit;
    } catch (const std::exception& error) {
        console::progressLine("");
        console::report(messageLevelCritical, error.what());
        return exitFailed;
    }
}

} // namespace

} // namespace tidemark::tool

int main(int argc, char** argv) {
    tidemark::tool::watchSignals();
    return tidemark::tool::guarded(argc, argv);
}
