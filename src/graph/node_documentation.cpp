// SPDX-License-Identifier: Apache-2.0
// How nodes and pins describe themselves: tooltips, and pages of the manual in the markup of a
// wiki.
#include <atomic>
#include <cstdlib>

#include "core/enum_value.h"
#include "core/markup.h"
#include "graph/graph_node.h"
#include "graph/graph_scene.h"

namespace tidemark::sluice::graph {

namespace {

constexpr std::size_t longestTooltipText = 60;
constexpr std::size_t longestOpenList = 3; // longer ones fold

TM_String bytesText(uint64_t bytes) {
    const char* const units[] = {"B", "KB", "MB", "GB", "TB"};
    double amount = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; amount >= 1024.0 && unit + 1 < std::size(units); ++unit) amount /= 1024.0;
    return unit == 0 ? text::format("%d B", static_cast<int>(bytes))
                     : text::format("%.2f %s", amount, units[unit]);
}

TM_String cell(const TM_String& content) {
    return "<td class=\"confluenceTd\">" + (content.empty() ? TM_String("&nbsp;") : content) +
           "</td>";
}

TM_String tableHead() {
    TM_String head = "<table class=\"confluenceTable\"><tbody><tr>";
    for (const char* column : {"Name", "Types", "PassThrough", "Description"}) {
        head += TM_String("<th class=\"confluenceTh\">") + column + "</th>";
    }
    return head + "</tr>";
}

TM_String listText(const Array<TM_String>& names) {
    TM_String list = "<ul>";
    for (const TM_String& name : names) list += "<li>" + text::escapedMarkup(name) + "</li>";
    return list + "</ul>";
}

// Every folding block of a page needs an id of its own.
unsigned nextBlockId() {
    static std::atomic<unsigned> latest{0};
    return ++latest;
}

TM_String folding(const char* title, const Array<TM_String>& names, bool expander) {
    if (!expander) {
        return TM_String("<ac:structured-macro ac:name=\"expand\"><ac:parameter "
                         "ac:name=\"title\">") +
               title + "</ac:parameter><ac:rich-text-body>" + listText(names) +
               "</ac:rich-text-body></ac:structured-macro>";
    }
    const unsigned id = nextBlockId();
    return text::format("<div class=\"expand-container\" id=\"expander-%u\">"
                        "<div class=\"expand-control\" id=\"expander-control-%u\">%s</div>"
                        "<div class=\"expand-content expand-hidden\" id=\"expander-content-%u\">",
                        id, id, title, id) +
           listText(names) + "</div></div>";
}

TM_String namesText(const char* title, const Array<TM_String>& names, bool expander) {
    if (names.size() > longestOpenList) return folding(title, names, expander);
    TM_String list;
    for (const TM_String& name : names)
        list += (list.empty() ? "" : ", ") + text::escapedMarkup(name);
    return list;
}

TM_String typesText(const Pin& pin, bool expander) {
    const weft::Attribute* const attribute = pin.getWeftAttribute();
    const Array<TM_String>& types = pin.getAllowedSpecializations();
    TM_String text;
    if (pin.isEnumType()) {
        Array<TM_String> options;
        pin.getEnumOptions(options);
        text = options.empty() ? TM_String("Enum") : folding("Enum", options, expander);
    } else if (pin.isSluiceNodeType()) {
        text = types.size() > 1 ? namesText("Sluice Node", types, expander)
                                : TM_String("All Sluice node types");
    } else if (types.empty()) {
        text = "Attribute"; // it carries whatever it is connected to
    } else {
        text = namesText("List", types, expander);
    }
    if (attribute && attribute->elementCountRule() == 1) text += "&nbsp;(1)";
    return text;
}

TM_String passThroughText(const Pin& pin) {
    ArrayOfPtr<GraphNodePin> others;
    pin.allowedInternalConnections(others);
    TM_String list;
    for (const GraphNodePin* other : others) {
        list += (list.empty() ? "" : ", ") + text::escapedMarkup(other->getName());
    }
    return list;
}

TM_String tableOf(const char* heading, const Array<Pin*>& pins, bool expander) {
    if (pins.empty()) return {};
    TM_String table = TM_String("<h4>") + heading + "</h4>" + tableHead();
    for (const Pin* pin : pins) table += pin->asConfluenceHTML(expander);
    return table + "</tbody></table>";
}

// A description may be written in markup, with images and links; any other is plain text.
bool isMarkup(const TM_String& description) {
    for (const char* tag : {"</", "<br", "<img"}) {
        if (description.find(tag) != TM_String::npos) return true;
    }
    return false;
}

// Lines of a description are paragraphs.
TM_String paragraphs(const TM_String& description) {
    TM_String text = description;
    while (!text.empty() && (text.back() == '.' || text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    if (!isMarkup(text)) text = text::escapedMarkup(text);
    return "<p>" + text::replaceAll(text, "\n", "</p><p>") + ".</p>";
}

} // namespace

// Pins.

TM_String Pin::getInfo() const {
    const weft::Attribute* const attribute = getWeftAttribute();
    TM_String info = getName();
    if (!attribute) return info;
    if (const weft::Value* held = value()) info += text::format(" (%d)", int(held->size()));
    info += "->" + text::cutText(attribute->allowedSpecializationsText(), longestTooltipText);
    const TM_String whole = getValueAsString(false);
    const TM_String shown = text::cutText(whole, longestTooltipText);
    if (!whole.empty()) info += "\nValue->" + shown;
    if (attribute->networkManager() && attribute->networkManager()->monitoring()) {
        const double seconds = attribute->accumulatedTime();
        info += text::format("\nTime->%fs", seconds);
        const auto* node = dynamic_cast<const Node*>(getParentGraphNodePtr());
        const SL_GraphScene* scene = node ? node->getScene() : nullptr;
        const double all = scene ? scene->getLastExecutionTime() : 0.0;
        if (all > 0.0) info += text::format("\nTime->%.2f%%", 100.0 * seconds / all);
    }
    return info + "\nMemory->" + bytesText(attribute->estimatedSize());
}

TM_String Pin::asHTML() const {
    const char* const direction = isInput() ? "Input" : "Output";
    return TM_String("<h4>") + direction + "</h4>" + tableHead() + asConfluenceHTML(true) +
           "</tbody></table>";
}

TM_String Pin::asConfluenceHTML(const bool& expander) const {
    return "<tr>" + cell(text::escapedMarkup(getName())) + cell(typesText(*this, expander)) +
           cell(passThroughText(*this)) +
           cell(text::replaceAll(text::escapedMarkup(getDescription()), "\n", "<br/>")) + "</tr>";
}

// Nodes.

TM_String Node::asHTML() const { return asSinglePageConfluenceHTML(); }

TM_String Node::asConfluenceHTML(const bool& expander) const {
    const TM_String type = text::escapedMarkup(getType());
    TM_String page = "<ac:structured-macro ac:name=\"anchor\"><ac:parameter ac:name=\"\">" + type +
                     "</ac:parameter></ac:structured-macro><h3>" + type + "</h3>";
    const int hint = getCoreNode() ? getCoreNode()->getThreadingModeHint() : 0;
    if (hint == 2) {
        page += "<p>This node is executed in parallel according to its input pins size.</p>";
    } else if (hint == 1) {
        page += "<p>The algorithm to perform the operation of this node is multithreaded.</p>";
    }
    return page + paragraphs(getDescription()) + tableOf("Inputs", getArrInputPin(), expander) +
           tableOf("Outputs", getArrOutputPin(), expander);
}

TM_String Node::firstDescriptionLineForConfluence() const {
    const TM_String end = "</p>";
    const TM_String all = paragraphs(getDescription());
    return all.substr(0, all.find(end) + end.size());
}

TM_String Node::asSinglePageConfluenceHTML() const {
    TM_String page = asConfluenceHTML(true);
    const char* const folder = std::getenv("SLDOCFOLDER");
    const char* const path = std::getenv("SLDOCPATH");
    if (!folder && !path) return page;
    const TM_String target = text::format("%s/%s/", folder ? folder : "", path ? path : "");
    for (const char* source : {" src=\"../", " src=\"./"}) {
        page = text::replaceAll(page, source, " src=\"" + target);
    }
    return text::replaceAll(page, " href=\"./", " href=\"" + target);
}

} // namespace tidemark::sluice::graph
