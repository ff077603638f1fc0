// SPDX-License-Identifier: Apache-2.0
// Reading whole files.
#include "tool/text_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tool/exit_status.h"

namespace tidemark::tool {

std::string contentOf(const std::string& file) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rb"),
                                                                 &std::fclose);
    std::string content;
    char buffer[65536];
    std::size_t count = 0;
    while (stream && (count = std::fread(buffer, 1, sizeof(buffer), stream.get())) > 0) {
        content.append(buffer, count);
    }
    if (!stream || std::ferror(stream.get())) {
        throw UsageError("can not read \"" + file + "\": " + std::strerror(errno));
    }
    return content;
}

Json jsonOfFile(const std::string& file) {
    try {
        return Json::parse(contentOf(file));
    } catch (const Json::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 1, column 4: ..."
        const std::string what = error.what();
        const std::size_t end = what.find("] ");
        throw UsageError("\"" + file + "\" is no JSON document: " +
                         (end == std::string::npos ? what : what.substr(end + 2)));
    }
}

} // namespace tidemark::tool
