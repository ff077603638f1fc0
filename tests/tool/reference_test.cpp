// SPDX-License-Identifier: Apache-2.0
// The node reference: every page, every link, and a search in a real browser.
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "tool/program.h"

namespace sluice_test {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

class ReferenceTest : public ProgramTest {
protected:
    ReferenceTest() {
        const Ended ended = sluice({"reference", "docs"});
        EXPECT_EQ(ended.status, 0) << ended.err;
        for (const auto& entry : fs::recursive_directory_iterator(path("docs"))) {
            if (entry.path().extension() == ".html") pages.push_back(entry.path());
        }
    }
    // What the page is after its script has run.
    std::string inBrowser(const std::string& address) const {
        const std::string command =
            "chromium --headless --no-sandbox --disable-gpu --disable-dev-shm-usage "
            "--user-data-dir='" +
            path("profile") + "' --virtual-time-budget=2000 --dump-dom '" + address +
            "' 2>/dev/null";
        std::string text;
        FILE* pipe = ::popen(command.c_str(), "r");
        if (!pipe) return text;
        char buffer[4096];
        for (std::size_t count; (count = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;) {
            text.append(buffer, count);
        }
        ::pclose(pipe);
        return text;
    }
    std::vector<fs::path> pages;
};

TEST_F(ReferenceTest, HasAPagePerTypeAndPerCategory) {
    const Json nodes = sluice({"nodes", "--json"}).json()["nodes"];
    std::set<std::string> categories;
    for (const Json& node : nodes) {
        const std::string type = node["type"];
        ASSERT_TRUE(exists("docs/types/" + type + ".html")) << type;
        const std::string page = read("docs/types/" + type + ".html");
        EXPECT_NE(page.find("<h1>" + type + "</h1>\n<p>"), std::string::npos) << type;
        EXPECT_EQ(page.find("<p></p>"), std::string::npos) << type;
        for (const Json& category : node["allowedCategories"]) categories.insert(category);
    }
    for (const std::string& category : categories) {
        std::string name;
        for (const char c : category) name += c == ' ' ? std::string("-20") : std::string(1, c);
        EXPECT_TRUE(exists("docs/categories/" + name + ".html")) << category;
    }
    EXPECT_GT(pages.size(), nodes.size() + categories.size());
}

TEST_F(ReferenceTest, NoLinkIsDead) {
    const std::regex link("(?:href|src)=\"([^\"#?]+)");
    std::size_t links = 0;
    for (const fs::path& page : pages) {
        const std::string content = contentOf(page);
        for (std::sregex_iterator i(content.begin(), content.end(), link), end; i != end; ++i) {
            ++links;
            EXPECT_TRUE(fs::exists(page.parent_path() / (*i)[1].str()))
                << page << " leads to " << (*i)[1];
            EXPECT_EQ((*i)[1].str().find("://"), std::string::npos) << "needs no network";
        }
    }
    EXPECT_GT(links, pages.size() * 3);
}

TEST_F(ReferenceTest, NoPinIsWithoutAMeaning) {
    const std::regex row(
        "<tr id=\"[^\"]*\"><th scope=\"row\">([^<]*)</th>.*<td>([^\n]*)</td></tr>");
    std::size_t rows = 0;
    for (const fs::path& page : pages) {
        const std::string content = contentOf(page);
        for (std::sregex_iterator i(content.begin(), content.end(), row), end; i != end; ++i) {
            ++rows;
            EXPECT_NE((*i)[2].str(), "") << page << " " << (*i)[1];
        }
    }
    EXPECT_GT(rows, 100u);
}

TEST_F(ReferenceTest, SearchFindsANodeInABrowser) {
    const std::string start = "file://" + path("docs/index.html");
    const std::string found = inBrowser(start + "?q=iterations+index");
    const std::size_t results = found.find("id=\"results\"");
    ASSERT_NE(results, std::string::npos) << found.substr(0, 500);
    const std::string list = found.substr(results, found.find("</ol>", results) - results);
    EXPECT_NE(list.find("href=\"types/For.html\""), std::string::npos) << list;
    EXPECT_EQ(list.find("href=\"types/Vector3.html\""), std::string::npos);
    EXPECT_NE(found.find(" found</p>"), std::string::npos);
    EXPECT_NE(inBrowser(start + "?q=xyzzy").find("Nothing found."), std::string::npos);
    const std::string page = inBrowser("file://" + path("docs/types/For.html"));
    EXPECT_NE(page.find("The index of the first iteration."), std::string::npos);
}

TEST_F(ReferenceTest, FolderThatCannotBeMadeIsRefused) {
    file("taken", "a file");
    const Ended ended = sluice({"reference", "taken"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_NE(ended.err.find("\"taken\" cannot be made"), std::string::npos) << ended.err;
}

TEST(Describe, PrintsThePageOfTheManual) {
    const Ended html = run({"describe", "For", "--html"});
    EXPECT_EQ(html.status, 0);
    EXPECT_NE(html.out.find("<h3>For</h3><p>The For node is"), std::string::npos) << html.out;
    const Ended wiki = run({"describe", "Add", "--wiki"});
    EXPECT_NE(wiki.out.find("ac:name=\"expand\""), std::string::npos) << wiki.out;
    EXPECT_EQ(run({"describe", "Add", "--wiki", "--json"}).status, 2);
}

} // namespace
} // namespace sluice_test
