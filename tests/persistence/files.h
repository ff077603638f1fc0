// SPDX-License-Identifier: Apache-2.0
// Files and texts of the tests of reading and writing graphs.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace support {

/// A folder of its own that goes with the object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "sluice-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string path() const { return path_.string(); }
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(file(name), std::ios::binary) << content;
        return file(name);
    }
    std::size_t countOfFiles() const {
        const std::filesystem::directory_iterator all(path_);
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

private:
    std::filesystem::path path_;
};

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

/// A document with these nodes in the root and these connections ("root.A.result>root.B.in0").
inline std::string document(const std::string& nodes, const std::string& connections = "") {
    std::string text = "<scene><nodes><node><name>root</name><type/><nodes>" + nodes +
                       "</nodes></node></nodes><connections>";
    std::istringstream lines(connections);
    for (std::string line; std::getline(lines, line, ' ');) {
        const std::size_t arrow = line.find('>');
        text += "<connection><source>root." + line.substr(0, arrow) + "</source><target>root." +
                line.substr(arrow + 1) + "</target></connection>";
    }
    return text + "</connections></scene>";
}

/// A node element; `content` is what follows name and type.
inline std::string node(const std::string& type, const std::string& name,
                        const std::string& content = "") {
    return "<node><name>" + name + "</name><type>" + type + "</type>" + content + "</node>";
}

inline std::string inputs(const std::string& content) { return "<inputs>" + content + "</inputs>"; }

inline std::string input(const std::string& name, const std::string& type, const std::string& value,
                         const std::string& more = "") {
    return "<input><name>" + name + "</name><type>" + type + "</type><value>" + value + "</value>" +
           more + "</input>";
}

} // namespace support
