// SPDX-License-Identifier: Apache-2.0
// `sluice completion`: scripts that complete sub-commands, options, node types and pins. Types
// stand in the script; pins are asked of the program, which reads the graph on the command line.
#include "graph/scene_manager.h"
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/pins.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeBase;
using sluice::graph::NodeFactory;
using sluice::graph::Pin;
using sluice::graph::SceneManager;

constexpr const char* bashTemplate = R"SCRIPT(# Completion of sluice for bash.

_sluice_graph() {
    local word
    for word in "${COMP_WORDS[@]:2}"; do
        case $word in
            *.xml) printf '%s' "$word"; return ;;
        esac
    done
}

_sluice_pins() {
    local graph
    graph=$(_sluice_graph)
    [[ -n $graph && -f $graph ]] || return
    compopt -o nospace 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -W "$(sluice completion --pins "$graph" "$@" 2>/dev/null)" -- "$current")
}

_sluice() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local types="@TYPES@"
    local categories="@CATEGORIES@"
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "@COMMANDS@ --help --version --no-color" -- "$current")
        return
    fi
    case $previous in
        --set | --get) _sluice_pins; return ;;
        --pull) _sluice_pins --outputs; return ;;
        --fail-on) mapfile -t COMPREPLY < <(compgen -W "critical error warning" -- "$current"); return ;;
        --progress) mapfile -t COMPREPLY < <(compgen -W "auto plain json none" -- "$current"); return ;;
        --verbosity) mapfile -t COMPREPLY < <(compgen -W "1 2 3 4 5" -- "$current"); return ;;
        --category)
            local IFS=$'\n'
            mapfile -t COMPREPLY < <(compgen -W "${categories//|/$'\n'}" -- "$current")
            return
            ;;
        --root | --library) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    esac
    if [[ $current == -* ]]; then
        local options=""
        case ${COMP_WORDS[1]} in
@OPTIONS@
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi
    case ${COMP_WORDS[1]} in
        describe) mapfile -t COMPREPLY < <(compgen -W "$types" -- "$current") ;;
        completion) mapfile -t COMPREPLY < <(compgen -W "bash zsh" -- "$current") ;;
        *) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    esac
}

complete -o filenames -F _sluice sluice
)SCRIPT";

constexpr const char* zshTemplate = R"SCRIPT(#compdef sluice
# Completion of sluice for zsh.

_sluice_pins() {
    local graph word
    for word in "${words[@]:1}"; do
        [[ $word == *.xml ]] && graph=$word
    done
    [[ -n $graph && -f $graph ]] || return 1
    local -a pins
    pins=("${(@f)$(sluice completion --pins "$graph" "$@" 2>/dev/null)}")
    compadd -S '' -a pins
}

_sluice_outputs() { _sluice_pins --outputs; }

_sluice_types() {
    local -a types
    types=(@TYPES@)
    compadd -a types
}

_sluice_categories() {
    local -a categories
    categories=("${(@s:|:)${:-@CATEGORIES@}}")
    compadd -a categories
}

_sluice() {
    local -a commands
    commands=(
@COMMANDS@
    )
    if ((CURRENT == 2)); then
        _describe 'command' commands
        return
    fi
    case ${words[2]} in
@OPTIONS@
    esac
}

if [[ ${funcstack[1]} == _sluice ]]; then
    _sluice "$@"
else
    compdef _sluice sluice
fi
)SCRIPT";

std::string typeList() {
    std::string list;
    for (const NodeFactory* factory : SceneManager::instance().getArrNodeFactory()) {
        list += (list.empty() ? "" : " ") + factory->getDescriptor().getTypeName();
    }
    return list;
}

/// Categories may hold blanks, so they are separated by bars.
std::string categoryList() {
    std::string list;
    for (const auto& entry : SceneManager::instance().getMapLongCategoryToFactories()) {
        list += (list.empty() ? "" : "|") + entry.first;
    }
    return list;
}

std::string withoutEquals(const std::string& option) {
    return option.back() == '=' ? option.substr(0, option.size() - 1) : option;
}

std::string bashScript(const std::vector<CommandWords>& commands) {
    std::string names;
    std::string cases;
    for (const CommandWords& command : commands) {
        names += (names.empty() ? "" : " ") + command.name;
        cases += "            " + command.name + ") options=\"";
        for (const auto& option : command.options) cases += withoutEquals(option.first) + " ";
        cases.back() = '"';
        cases += " ;;\n";
    }
    cases.pop_back();
    std::string script = bashTemplate;
    script = text::replaceAll(script, "@TYPES@", typeList());
    script = text::replaceAll(script, "@CATEGORIES@", categoryList());
    script = text::replaceAll(script, "@COMMANDS@", names);
    return text::replaceAll(script, "@OPTIONS@", cases);
}

/// `text` inside single quotes and brackets of an _arguments description.
std::string zshQuoted(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
        if (c == '\'') {
            out += "'\\''";
        } else {
            out += c;
        }
    }
    return out;
}

/// What completes the value of an option.
std::string zshAction(const std::string& option) {
    if (option == "--get" || option == "--set") return "pin:_sluice_pins";
    if (option == "--pull") return "pin:_sluice_outputs";
    if (option == "--fail-on") return "level:(critical error warning)";
    if (option == "--progress") return "form:(auto plain json none)";
    if (option == "--verbosity") return "level:(1 2 3 4 5)";
    if (option == "--category") return "category:_sluice_categories";
    if (option == "--root" || option == "--library") return "folder:_files -/";
    for (const char* taking : {"--save", "--set-file", "--trace", "--pins"}) {
        if (option == taking) return "file:_files";
    }
    return "value: ";
}

std::string zshArguments(const std::string& command) {
    if (command == "describe") return "'1:node type:_sluice_types'";
    if (command == "completion") return "'1:shell:(bash zsh)'";
    return command == "nodes" ? "" : "'*:graph:_files'";
}

std::string zshScript(const std::vector<CommandWords>& commands) {
    std::string names;
    std::string cases;
    for (const CommandWords& command : commands) {
        names += "        '" + command.name + ":" + zshQuoted(command.help) + "'\n";
        cases += "        " + command.name + ")\n            shift words; ((CURRENT--))\n" +
                 "            _arguments \\\n";
        for (const auto& [option, help] : command.options) {
            const std::string name = withoutEquals(option);
            cases += "                '*" + name + "[" + zshQuoted(help) + "]" +
                     (name == option ? "" : ":" + zshAction(name)) + "' \\\n";
        }
        cases += "                " + zshArguments(command.name) + "\n            ;;\n";
    }
    names.pop_back();
    cases.pop_back();
    std::string script = zshTemplate;
    script = text::replaceAll(script, "@TYPES@", typeList());
    script = text::replaceAll(script, "@CATEGORIES@", categoryList());
    script = text::replaceAll(script, "@COMMANDS@", names);
    return text::replaceAll(script, "@OPTIONS@", cases);
}

/// The full names of the pins of a graph, one per line.
int listPins(const CompletionOptions& options) {
    host::StandaloneHost host;
    bridge::setHost(&host);
    Graph graph;
    if (!readGraph(options.pinsOf, graph)) {
        throw UsageError("\"" + options.pinsOf + "\" can not be read");
    }
    for (const NodeBase* node : nodesInTreeOrder(graph.scene)) {
        const std::string prefix = node->getFullName() + ".";
        if (!options.outputsOnly) {
            for (const Pin* pin : node->getArrInputPin()) {
                console::out(prefix + pin->getName() + "\n");
            }
        }
        for (const Pin* pin : node->getArrOutputPin()) {
            console::out(prefix + pin->getName() + "\n");
        }
    }
    return console::leave(exitDone);
}

} // namespace

int completion(const CompletionOptions& options, const std::vector<CommandWords>& commands) {
    if (!options.pinsOf.empty()) return listPins(options);
    console::out(options.shell == "bash" ? bashScript(commands) : zshScript(commands));
    return console::leave(exitDone);
}

} // namespace tidemark::tool
