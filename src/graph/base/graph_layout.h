// SPDX-License-Identifier: Apache-2.0
// Where a view draws the nodes and connections of a graph, by their full names, and its notes.
#pragma once

#include <functional>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"
#include "core/types.h"
#include "graph/base/tm_class.h"

namespace tidemark::graph {

/// A piece of text on the drawing. `parentNode` is the full name of the compound it stands in.
struct NoteDesc {
    TM_String parentNode;
    TM_String content;
    Tuple2<float, float> position;
    Tuple2<float, float> size;
    Color4<float> textColor{0.0f, 0.0f, 0.0f, 1.0f};
    Color4<float> backgroundColor{0.0f, 0.0f, 0.0f, 1.0f};

    friend bool operator==(const NoteDesc&, const NoteDesc&) = default;
};

/// View data by full node name and by connection name, each value present or not, and a list of
/// notes. Entries keep the order in which they came; finding one by name costs a constant.
/// An `insert...` operation makes the entry when it is missing and sets what it is given.
class SLUICE_API GraphLayout : public TM_Class {
public:
    using Position = Tuple2<float, float>;
    using Color = Color4<float>;
    using NameMap = std::map<TM_String, TM_String>;

    GraphLayout() = default;
    GraphLayout(const GraphLayout& other);
    ~GraphLayout() override = default;

    // Without value when the name is unknown or the value was never set.
    virtual Optional<Position> getPositionByNodeName(const TM_String& name) const;
    virtual Optional<Color> getColorByNodeName(const TM_String& name) const;
    virtual Optional<bool> getCollapsedByNodeName(const TM_String& name) const;
    virtual Optional<bool> getVisibleByNodeName(const TM_String& name) const;
    virtual Optional<bool> getHorizontalInputsByNodeName(const TM_String& name) const;
    virtual Optional<bool> getHorizontalOutputsByNodeName(const TM_String& name) const;
    virtual Optional<bool> getVisibleByConnectionName(const TM_String& name) const;
    virtual Optional<bool> getBezierByConnectionName(const TM_String& name) const;

    /// Smallest x and smallest y over the positions of nodes and notes; without value when there is
    /// no position.
    virtual Optional<Position> getTopLeftCorner() const;
    /// The nodes with an entry and the parents of notes, each once.
    virtual void getInvolvedNodeNames(Array<TM_String>& names) const;

    virtual GraphLayout& operator=(const GraphLayout& other);

    virtual void insertNode(const TM_String& name, const Position& position, bool collapsed,
                            bool visible, bool horizontalInputs, bool horizontalOutputs);
    virtual void insertNode(const TM_String& name, const Position& position, const Color& color,
                            bool collapsed, bool visible, bool horizontalInputs,
                            bool horizontalOutputs);
    virtual void insertConnection(const TM_String& name, bool visible, bool bezier);
    virtual void insertNodePosition(const TM_String& name, const Position& position);
    virtual void insertNodeColor(const TM_String& name, const Color& color);
    virtual void insertNodeCollapsed(const TM_String& name, bool collapsed);
    virtual void insertNodeVisible(const TM_String& name, bool visible);
    virtual void insertNodeHorizontalInputs(const TM_String& name, bool horizontal);
    virtual void insertNodeHorizontalOutputs(const TM_String& name, bool horizontal);
    virtual void insertConnectionVisible(const TM_String& name, bool visible);
    virtual void insertConnectionBezier(const TM_String& name, bool bezier);

    virtual void addNote(const TM_String& parentNode, const TM_String& content,
                         const Position& position, const Position& size, const Color& textColor,
                         const Color& backgroundColor);
    virtual void addNote(const NoteDesc& note);

    /// Copies every value that `other` has over this one's, and adds its notes.
    virtual void updateWithOther(const GraphLayout& other);
    /// Moves nodes and notes.
    virtual void offset(const Position& delta);
    /// One line per entry and note, for a person to read, appended to `out`.
    virtual void printValues(TM_String& out) const;

    // Renaming acts on the names of nodes and connections and on the parents of notes. Of entries
    // that come to have one name, the values of the later ones win.

    /// Exchanges the names that are keys of `names`.
    virtual void applyDictionary(const NameMap& names);
    /// Replaces `before` wherever it occurs.
    virtual void replaceTxtInNames(const TM_String& before, const TM_String& after);
    /// Replaces `before` where a name begins with it.
    virtual void replacePrefixInNames(const TM_String& before, const TM_String& after);
    /// Gives the notes of this layout that equal one of `notes` another parent.
    virtual void moveNotes(const Array<NoteDesc>& notes, const TM_String& parent);

    virtual void getAllNodeNames(Array<TM_String>& names) const;
    virtual void getAllConnectionNames(Array<TM_String>& names) const;
    /// False when there is no such entry.
    virtual bool removeNode(const TM_String& name);

    /// In the order they came.
    const Array<NoteDesc>& notes() const { return notes_; }

    bool isEmpty() const;
    void clear();

private:
    struct NodeEntry {
        TM_String name;
        Optional<Position> position;
        Optional<Color> color;
        Optional<bool> collapsed;
        Optional<bool> visible;
        Optional<bool> horizontalInputs;
        Optional<bool> horizontalOutputs;

        void overlay(const NodeEntry& other);
    };
    struct ConnectionEntry {
        TM_String name;
        Optional<bool> visible;
        Optional<bool> bezier;

        void overlay(const ConnectionEntry& other);
    };

    /// Entries in order, found by name.
    template <typename Entry>
    class Table {
    public:
        Table() = default;
        Table(const Table& other) { overlay(other); }
        Table& operator=(const Table& other);

        Entry& refOrMake(const TM_String& name);
        const Entry* find(const TM_String& name) const;
        bool remove(const TM_String& name);
        void overlay(const Table& other);
        void rename(const std::function<TM_String(const TM_String&)>& renamed);
        void clear();

        std::list<Entry> entries;

    private:
        // Keys are views of the names in the entries.
        std::unordered_map<std::string_view, typename std::list<Entry>::iterator> places_;
    };

    template <typename Value>
    Optional<Value> nodeValue(const TM_String& name, Optional<Value> NodeEntry::*member) const;
    void rename(const std::function<TM_String(const TM_String&)>& renamed);

    Table<NodeEntry> nodes_;
    Table<ConnectionEntry> connections_;
    Array<NoteDesc> notes_;
};

} // namespace tidemark::graph
