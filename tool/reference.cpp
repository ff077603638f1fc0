// SPDX-License-Identifier: Apache-2.0
// `sluice reference`: the node types as web pages that need no server: a start page with a search,
// a page per category and a page per type.
#include <algorithm>
#include <filesystem>
#include <map>

#include "bridge/host.h"
#include "core/markup.h"
#include "graph/scene_manager.h"
#include "host/standalone_host.h"
#include "persistence/file_save.h"
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/library.h"
#include "tool/node_json.h"
#include "tool/reference_assets.h"

namespace tidemark::tool {

namespace {

namespace fs = std::filesystem;
using sluice::graph::NodeFactory;
using sluice::graph::SceneManager;
using text::escapedMarkup;

/// A name that is good for a file and a link, and of its own for every text.
std::string fileName(const std::string& text) {
    std::string out;
    for (const char c : text) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '.' || c == '_';
        out += isPlain ? std::string(1, c) : text::format("-%02x", static_cast<unsigned char>(c));
    }
    return out + ".html";
}

std::string paragraphs(std::string text) {
    text.erase(text.find_last_not_of("\n ") + 1);
    return "<p>" + text::replaceAll(escapedMarkup(text), "\n", "</p>\n<p>") + "</p>\n";
}

/// Writes all pages of one reference.
class Reference {
public:
    explicit Reference(std::string folder) : folder_(std::move(folder)) {}

    void addType(Json node) {
        for (const Json& category : node["allowedCategories"]) {
            categories_[category.get<std::string>()].push_back(nodes_.size());
        }
        nodes_.push_back(std::move(node));
    }
    void write() {
        for (const char* inner : {"", "types", "categories", "values"}) {
            std::error_code error;
            fs::create_directories(fs::path(folder_) / inner, error);
            if (error) throw UsageError("\"" + folder_ + "\" cannot be made: " + error.message());
        }
        save("style.css", referenceStyle);
        save("search.js", referenceScript);
        save("index.html", startPage());
        for (const auto& [category, members] : categories_) {
            save("categories/" + fileName(category), categoryPage(category, members));
        }
        collectValueTypes();
        for (const auto& [type, users] : valueTypes_) {
            save("values/" + fileName(type), valuePage(type, users));
        }
        for (const Json& node : nodes_) {
            save("types/" + fileName(node["type"].get<std::string>()), typePage(node));
        }
    }
    std::size_t count() const { return nodes_.size(); }

private:
    struct Users {
        std::vector<std::size_t> readers;
        std::vector<std::size_t> writers;
    };

    void save(const std::string& name, const std::string& content) const {
        const std::string path = (fs::path(folder_) / name).string();
        sluice::graph::FileSave file(path);
        if (!file.reason().empty() || !file.write(content) || !file.commit()) {
            throw UsageError("\"" + path + "\" could not be written: " + file.reason());
        }
    }

    static std::string page(const std::string& title, const std::string& above,
                            const std::string& content) {
        return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
               "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
               "<meta name=\"color-scheme\" content=\"light dark\">\n<title>" +
               escapedMarkup(title) + "</title>\n<link rel=\"stylesheet\" href=\"" + above +
               "style.css\">\n</head>\n<body>\n<header><a class=\"home\" href=\"" + above +
               "index.html\">Sluice Graph <span>node reference</span></a></header>\n<main>\n" +
               content + "</main>\n</body>\n</html>\n";
    }

    std::string item(std::size_t index, const std::string& above) const {
        const Json& node = nodes_[index];
        const std::string type = node["type"];
        return "<li data-words=\"" + escapedMarkup(text::toLower(wordsOf(node))) + "\"><a href=\"" +
               above + "types/" + fileName(type) + "\">" + escapedMarkup(type) + "</a> <span>" +
               escapedMarkup(firstLine(node["description"])) + "</span></li>\n";
    }

    static std::string wordsOf(const Json& node) {
        std::string words = node["type"].get<std::string>() + " " +
                            node["category"].get<std::string>() + " " +
                            node["description"].get<std::string>();
        for (const char* side : {"inputs", "outputs"}) {
            for (const Json& pin : node[side]) words += " " + pin["name"].get<std::string>();
        }
        return words;
    }

    std::string startPage() const {
        std::string content =
            "<h1>Node types</h1>\n<p>" + std::to_string(nodes_.size()) + " types in " +
            std::to_string(categories_.size()) +
            " categories.</p>\n<input id=\"search\" type=\"search\" autofocus "
            "placeholder=\"Search names, pins and descriptions\" aria-label=\"Search\">\n"
            "<p id=\"found\" role=\"status\"></p>\n<ol id=\"results\" class=\"types\" "
            "hidden></ol>\n"
            "<div id=\"all\">\n";
        for (const auto& [category, members] : categories_) {
            content += "<section><h2><a href=\"categories/" + fileName(category) + "\">" +
                       escapedMarkup(category) + "</a> <small>" + std::to_string(members.size()) +
                       "</small></h2>\n<ul class=\"types\">\n";
            for (const std::size_t member : members) content += item(member, "");
            content += "</ul></section>\n";
        }
        return page("Node reference", "",
                    content + "</div>\n<script src=\"search.js\"></script>\n");
    }

    std::string categoryPage(const std::string& category,
                             const std::vector<std::size_t>& members) const {
        std::string content = "<h1>" + escapedMarkup(category) + "</h1>\n<ul class=\"types\">\n";
        for (const std::size_t member : members) content += item(member, "../");
        return page(category, "../", content + "</ul>\n");
    }

    void collectValueTypes() {
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            for (const char* side : {"inputs", "outputs"}) {
                const bool reads = std::string(side) == "inputs";
                for (const Json& pin : nodes_[i][side]) {
                    for (const Json& type : pin["allowed"]) {
                        Users& users = valueTypes_[type.get<std::string>()];
                        auto& list = reads ? users.readers : users.writers;
                        if (list.empty() || list.back() != i) list.push_back(i);
                    }
                }
            }
        }
    }

    std::string valuePage(const std::string& type, const Users& users) const {
        std::string content = "<h1>" + escapedMarkup(type) +
                              "</h1>\n<p>Values of this type flow along connections between pins "
                              "that allow it.</p>\n";
        const auto list = [&](const char* title, const std::vector<std::size_t>& members) {
            if (members.empty()) return;
            content += TM_String("<h2>") + title + "</h2>\n<ul class=\"types\">\n";
            for (const std::size_t member : members) content += item(member, "../");
            content += "</ul>\n";
        };
        list("Nodes that give it", users.writers);
        list("Nodes that take it", users.readers);
        return page(type, "../", content);
    }

    static std::string typesCell(const Json& pin) {
        constexpr std::size_t mostShown = 8;
        const Json& types = pin["allowed"];
        if (types.empty()) return "any";
        std::string links;
        for (const Json& type : types) {
            const std::string name = type;
            links += (links.empty() ? "" : ", ") + ("<a href=\"../values/" + fileName(name)) +
                     "\">" + escapedMarkup(name) + "</a>";
        }
        if (types.size() <= mostShown) return links;
        return "<details><summary>" + std::to_string(types.size()) + " types</summary>" + links +
               "</details>";
    }

    /// One element stands for itself.
    static std::string valueText(const Json& value) {
        if (value.is_null() || value.empty()) return {};
        return "<code>" + escapedMarkup(dumped(value.size() == 1 ? value[0] : value)) + "</code>";
    }
    /// One value, or one for each type.
    static std::string defaultText(const Json& pin) {
        if (!pin.contains("defaults")) return valueText(pin["value"]);
        std::string lines;
        for (const auto& [type, value] : pin["defaults"].items()) {
            lines += (lines.empty() ? "" : "<br>") + escapedMarkup(type) + " " + valueText(value);
        }
        if (pin["defaults"].size() <= 2) return lines;
        return "<details><summary>by type</summary>" + lines + "</details>";
    }

    static std::string pinTable(const char* title, const char* side, const Json& pins) {
        if (pins.empty()) return {};
        const bool isInput = std::string(side) == "inputs";
        std::string table =
            std::string("<h2>") + title + "</h2>\n<div class=\"wide\"><table class=\"" + side +
            "\">\n<thead><tr><th>Pin</th><th>Types</th>" + (isInput ? "<th>Default</th>" : "") +
            "<th>Meaning</th></tr></thead>\n<tbody>\n";
        for (const Json& pin : pins) {
            const std::string name = pin["name"];
            std::string meaning = escapedMarkup(pin["description"].get<std::string>());
            if (pin.contains("options")) {
                std::string options;
                for (const Json& option : pin["options"]) {
                    options += (options.empty() ? "" : ", ") + option.get<std::string>();
                }
                meaning += "<br><em>Options:</em> " + escapedMarkup(options);
            }
            table += "<tr id=\"" + std::string(side) + "-" + escapedMarkup(name) +
                     "\"><th scope=\"row\">" + escapedMarkup(name) + "</th><td>" + typesCell(pin) +
                     "</td>" + (isInput ? "<td>" + defaultText(pin) + "</td>" : "") + "<td>" +
                     text::replaceAll(meaning, "\n", "<br>") + "</td></tr>\n";
        }
        return table + "</tbody></table></div>\n";
    }

    std::string typePage(const Json& node) const {
        const std::string type = node["type"];
        std::string content = "<nav>";
        for (const Json& category : node["allowedCategories"]) {
            const std::string name = category;
            content += "<a class=\"category\" href=\"../categories/" + fileName(name) + "\">" +
                       escapedMarkup(name) + "</a> ";
        }
        content += "</nav>\n<h1>" + escapedMarkup(type) + "</h1>\n" +
                   paragraphs(node["description"].get<std::string>());
        if (node["dynamicPins"] == true) {
            content += "<p class=\"note\">Users can add pins to this node.</p>\n";
        }
        content += pinTable("Inputs", "inputs", node["inputs"]) +
                   pinTable("Outputs", "outputs", node["outputs"]);
        return page(type, "../", content);
    }

    const std::string folder_;
    std::vector<Json> nodes_;
    std::map<std::string, std::vector<std::size_t>> categories_;
    std::map<std::string, Users> valueTypes_;
};

} // namespace

int writeReference(const ReferenceOptions& options) {
    host::StandaloneHost host;
    bridge::setHost(&host);
    registerLibraries();
    TypeExplorer explorer;
    Reference reference(options.folder);
    for (NodeFactory* factory : SceneManager::instance().getArrNodeFactory()) {
        reference.addType(explorer.describe(*factory));
    }
    printReports(host);
    reference.write();
    console::line(options.folder + "/index.html: " + std::to_string(reference.count()) + " types");
    return console::leave(exitDone);
}

} // namespace tidemark::tool
