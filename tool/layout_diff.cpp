// SPDX-License-Identifier: Apache-2.0
// Comparing two layouts: data by node and by connection, and notes.
#include "tool/layout_diff.h"

#include <map>
#include <unordered_set>

#include "tool/value_json.h"

namespace tidemark::tool {

namespace {

using tidemark::graph::GraphLayout;
using tidemark::graph::NoteDesc;

Json json(const Tuple2<float, float>& pair) {
    return {floatJson(pair.first), floatJson(pair.second)};
}
Json json(const Color4<float>& color) {
    return {floatJson(color.r), floatJson(color.g), floatJson(color.b), floatJson(color.a)};
}
Json json(bool flag) { return flag; }
template <typename Value>
Json json(const Optional<Value>& value) {
    return value ? json(*value) : Json(nullptr);
}

Json noteJson(const NoteDesc& note) {
    return {{"content", note.content},
            {"position", json(note.position)},
            {"size", json(note.size)},
            {"textColor", json(note.textColor)},
            {"backgroundColor", json(note.backgroundColor)}};
}

class LayoutComparison {
public:
    LayoutComparison(const GraphLayout& a, const GraphLayout& b, std::vector<Difference>& found)
        : a_(a), b_(b), found_(found) {}

    void compareNode(const TM_String& name) {
        compare(name, "position", &GraphLayout::getPositionByNodeName);
        compare(name, "color", &GraphLayout::getColorByNodeName);
        compare(name, "collapsed", &GraphLayout::getCollapsedByNodeName);
        compare(name, "visible", &GraphLayout::getVisibleByNodeName);
        compare(name, "horizontalInputs", &GraphLayout::getHorizontalInputsByNodeName);
        compare(name, "horizontalOutputs", &GraphLayout::getHorizontalOutputsByNodeName);
    }
    void compareConnection(const TM_String& name) {
        compare(name, "visible", &GraphLayout::getVisibleByConnectionName);
        compare(name, "bezier", &GraphLayout::getBezierByConnectionName);
    }
    void compareNotes();

private:
    template <typename Value>
    void compare(const TM_String& name, const char* what,
                 Optional<Value> (GraphLayout::*get)(const TM_String&) const) {
        const Optional<Value> valueOfA = (a_.*get)(name);
        const Optional<Value> valueOfB = (b_.*get)(name);
        if (valueOfA == valueOfB) return;
        found_.push_back({"layout", name, what, json(valueOfA), json(valueOfB)});
    }

    const GraphLayout& a_;
    const GraphLayout& b_;
    std::vector<Difference>& found_;
};

// Equal notes cancel out, however often and in whatever order they stand.
void LayoutComparison::compareNotes() {
    std::map<std::string, int> surplus; // of a
    const auto key = [](const NoteDesc& note) {
        return note.parentNode + "\n" + dumped(noteJson(note));
    };
    for (const NoteDesc& note : a_.notes()) ++surplus[key(note)];
    for (const NoteDesc& note : b_.notes()) --surplus[key(note)];
    for (const NoteDesc& note : a_.notes()) {
        if (surplus[key(note)] <= 0) continue;
        --surplus[key(note)];
        found_.push_back({"note", note.parentNode, "", noteJson(note), nullptr});
    }
    for (const NoteDesc& note : b_.notes()) {
        if (surplus[key(note)] >= 0) continue;
        ++surplus[key(note)];
        found_.push_back({"note", note.parentNode, "", nullptr, noteJson(note)});
    }
}

/// The names of both lists, each once.
Array<TM_String> unionOf(const Array<TM_String>& a, const Array<TM_String>& b) {
    Array<TM_String> all;
    std::unordered_set<TM_String> known;
    for (const Array<TM_String>* list : {&a, &b}) {
        for (const TM_String& name : *list) {
            if (known.insert(name).second) all.append(name);
        }
    }
    return all;
}

} // namespace

void compareLayouts(const GraphLayout& a, const GraphLayout& b,
                    const std::function<bool(const std::string&)>& isOfBoth,
                    std::vector<Difference>& found) {
    LayoutComparison comparison(a, b, found);
    Array<TM_String> namesOfA;
    Array<TM_String> namesOfB;
    a.getAllNodeNames(namesOfA);
    b.getAllNodeNames(namesOfB);
    for (const TM_String& name : unionOf(namesOfA, namesOfB)) {
        if (isOfBoth(name)) comparison.compareNode(name);
    }
    namesOfA.clear();
    namesOfB.clear();
    a.getAllConnectionNames(namesOfA);
    b.getAllConnectionNames(namesOfB);
    for (const TM_String& name : unionOf(namesOfA, namesOfB)) comparison.compareConnection(name);
    comparison.compareNotes();
}

} // namespace tidemark::tool
