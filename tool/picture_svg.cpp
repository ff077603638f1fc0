// SPDX-License-Identifier: Apache-2.0
// Pictures as SVG.
#include <algorithm>
#include <cmath>

#include "core/markup.h"
#include "tool/picture_colors.h"
#include "tool/picture_writers.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeBase;
using sluice::graph::Pin;
using sluice::graph::SL_GraphScene;
using tidemark::graph::GraphConnection;
using tidemark::graph::Message;
using namespace picture;

constexpr double border = 24;
constexpr std::size_t longestTip = 300;
constexpr uint32_t mostMessages = 10;

constexpr char style[] = R"css(
text { font: 11px "DejaVu Sans", "Segoe UI", Helvetica, Arial, sans-serif; fill: #1d2530; }
.paper { fill: #ffffff; } .node { fill: #f7f9fb; stroke: #9aa6b3; }
.frame { fill: #5b6775; fill-opacity: .06; stroke: #9aa6b3; stroke-dasharray: 5 3; }
.name { font-weight: 600; font-size: 12px; } .type { fill-opacity: .75; }
.wire { fill: none; stroke-width: 1.8; } .pin { stroke: #5b6775; stroke-width: .8; }
.light { fill: #ffffff; } .dark { fill: #14181d; }
.error { fill: #d12f2f; } .warning { fill: #e08a00; } .mark { fill: #ffffff; font-weight: 700; }
@media (prefers-color-scheme: dark) {
  text { fill: #e4e9ef; } .paper { fill: #14181d; } .node { fill: #1f262e; stroke: #5b6775; }
  .light { fill: #ffffff; } .dark { fill: #14181d; } .mark { fill: #ffffff; }
}
)css";

std::string number(double value) {
    return text::format("%.1f", std::isfinite(value) ? value : 0.0);
}

/// Goes on to `b` in the form of an S, level at both ends.
std::string curve(const Picture::Point& a, const Picture::Point& b) {
    // Wires that lead back swing out; the others never overshoot.
    const double bend = b.x > a.x ? (b.x - a.x) / 2 : std::min(120.0, 40 + (a.x - b.x) / 4);
    return "C" + number(a.x + bend) + " " + number(a.y) + " " + number(b.x - bend) + " " +
           number(b.y) + " " + number(b.x) + " " + number(b.y);
}

/// Writes one picture.
class Svg {
public:
    Svg(const Picture& picture, const SL_GraphScene& scene) : picture_(picture), scene_(scene) {}

    std::string write() {
        const Box& whole = picture_.whole();
        const std::string width = number(whole.width + 2 * border);
        const std::string height = number(whole.height + 2 * border);
        out_ =
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
            "width=\"" +
            width + "\" height=\"" + height + "\" viewBox=\"" + number(-border) + " " +
            number(-border) + " " + width + " " + height + "\">\n<style>" + style +
            "</style>\n<rect class=\"paper\" x=\"" + number(-border) + "\" y=\"" + number(-border) +
            "\" width=\"" + width + "\" height=\"" + height + "\"/>\n";
        // Outer boxes come first, so inner ones lie above them.
        for (const Box& box : picture_.boxes()) {
            if (box.node) addNode(box);
            for (const GraphConnection* wire : box.wires) addWire(*wire);
        }
        return std::move(out_) + "</svg>\n";
    }

private:
    void addText(double x, double y, const char* anchor, const std::string& classes,
                 const std::string& text) {
        out_ += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" text-anchor=\"" + anchor +
                "\"" + (classes.empty() ? "" : " class=\"" + classes + "\"") + ">" +
                text::escapedMarkup(text::cutText(text, 60)) + "</text>\n";
    }

    void addNode(const Box& box) {
        const NodeBase& node = *box.node;
        const Color4<float> color = SL_GraphScene::getColorForCategory(node.getCategory());
        const std::string x = number(box.x);
        const std::string y = number(box.y);
        const std::string width = number(box.width);
        out_ += "<g>\n<title>" +
                text::escapedMarkup(node.getFullName() + "\n" + node.getType() + " (" +
                                    node.getCategory() + ")") +
                "</title>\n<rect class=\"" + (box.inside.empty() ? "node" : "frame") +
                "\" rx=\"6\" x=\"" + x + "\" y=\"" + y + "\" width=\"" + width + "\" height=\"" +
                number(box.height) + "\"/>\n<path fill=\"" + hex(color) + "\" d=\"M" + x + " " +
                number(box.y + headHeight) + "v" + number(6 - headHeight) + "a6 6 0 0 1 6 -6h" +
                number(box.width - 12) + "a6 6 0 0 1 6 6v" + number(headHeight - 6) + "z\"/>\n";
        const std::string tone = isDark(color) ? "light" : "dark";
        addText(box.x + padding, box.y + 16, "start", "name " + tone, headName(node));
        if (!headType(node).empty()) {
            addText(box.x + box.width - padding, box.y + 16, "end", "type " + tone, headType(node));
        }
        out_ += "</g>\n";
        for (const Pin* pin : node.getArrInputPin()) addPin(*pin);
        for (const Pin* pin : node.getArrOutputPin()) addPin(*pin);
        addBadge(box);
    }

    void addPin(const Pin& pin) {
        const Picture::Point place = picture_.pinPlace(pin);
        std::string tip = pin.getFullName() + "\n" + pin.getFirstSpecialization();
        const TM_String value = pin.getValueAsString(false);
        if (!value.empty()) tip += "\n" + text::cutText(value, longestTip);
        out_ += "<g><title>" + text::escapedMarkup(tip) +
                "</title><circle class=\"pin\" r=\"4\" cx=\"" + number(place.x) + "\" cy=\"" +
                number(place.y) + "\" fill=\"" + hex(pin.getColor()) + "\"/>";
        const double side = pin.isInput() ? padding : -padding;
        addText(place.x + side, place.y + 4, pin.isInput() ? "start" : "end", "", pin.getName());
        out_ += "</g>\n";
    }

    void addWire(const GraphConnection& wire) {
        const auto* source = static_cast<const Pin*>(wire.getSourcePin());
        const auto* target = static_cast<const Pin*>(wire.getTargetPin());
        const Picture::Point a = picture_.pinPlace(*source);
        const Picture::Point b = picture_.pinPlace(*target);
        std::string way = "M" + number(a.x) + " " + number(a.y);
        Picture::Point at = a;
        for (const Stretch& stretch : picture_.stretchesOf(&wire)) {
            way += curve(at, {stretch.x, stretch.y}) + "h" + number(stretch.width);
            at = {stretch.x + stretch.width, stretch.y};
        }
        out_ += "<path class=\"wire\" stroke=\"" + hex(source->getColor()) + "\" d=\"" + way +
                curve(at, b) + "\"><title>" +
                text::escapedMarkup(source->getFullName() + "\n-> " + target->getFullName()) +
                "</title></path>\n";
    }

    void addBadge(const Box& box) {
        const auto& handler = box.node->getMessages();
        if (!handler.hasErrorsOrCriticals() && !handler.hasWarnings()) return;
        std::string tip;
        uint32_t shown = 0;
        for (const Message& message : handler.messages()) {
            if (shown++ == mostMessages) break;
            tip += (tip.empty() ? "" : "\n") + text::cutText(message.asString(), longestTip);
        }
        const double x = box.x + box.width;
        out_ += "<g class=\"badge\"><title>" + text::escapedMarkup(tip) +
                "</title><circle class=\"" +
                (handler.hasErrorsOrCriticals() ? "error" : "warning") + "\" r=\"9\" cx=\"" +
                number(x) + "\" cy=\"" + number(box.y) + "\"/>";
        addText(x, box.y + 4, "middle", "mark", "!");
        out_ += "</g>\n";
    }

    const Picture& picture_;
    const SL_GraphScene& scene_;
    std::string out_;
};

} // namespace

std::string svgOf(const Picture& picture, const SL_GraphScene& scene) {
    return Svg(picture, scene).write();
}

} // namespace tidemark::tool
