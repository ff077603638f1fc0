// SPDX-License-Identifier: Apache-2.0
// Loading of XML documents and the way into the property tree's parser.
#include "persistence/xml_document.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cerrno>
#include <istream>
#include <streambuf>
#include <system_error>

#include "bridge/host.h"

namespace tidemark::sluice::graph {

namespace {

class FileHandle {
public:
    explicit FileHandle(int descriptor) : descriptor_(descriptor) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    int get() const { return descriptor_; }

private:
    int descriptor_;
};

XmlProblem failure(int error) { return {systemErrorText(error), 0}; }

// Reads to the end, which need not be where the size said: the file may be growing, or a view of
// something that has no size.
Optional<XmlProblem> readAll(int descriptor, std::size_t expected, std::string& bytes) {
    constexpr std::size_t step = 64 * 1024;
    bytes.resize(expected + 1);
    std::size_t used = 0;
    for (;;) {
        if (used == bytes.size()) bytes.resize(bytes.size() + bytes.size() / 2 + step);
        const ssize_t count = ::read(descriptor, bytes.data() + used, bytes.size() - used);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return failure(errno);
        if (count == 0) break;
        used += static_cast<std::size_t>(count);
    }
    bytes.resize(used);
    return {};
}

} // namespace

TM_String systemErrorText(int error) { return std::generic_category().message(error); }

Optional<XmlProblem> readRegularFile(const TM_String& path, std::string& bytes) {
    if (path.find('\0') != TM_String::npos) return failure(EINVAL);
    // Without O_NONBLOCK, opening a pipe would wait for a writer.
    const FileHandle file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (file.get() < 0) return failure(errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) return failure(errno);
    if (S_ISDIR(status.st_mode)) return XmlProblem{"a folder, not a file", 0};
    if (!S_ISREG(status.st_mode)) return XmlProblem{"not a regular file", 0};
    return readAll(file.get(), static_cast<std::size_t>(status.st_size), bytes);
}

Optional<XmlProblem> loadXml(bool isFile, const TM_String& pathOrText, PackedXml& document) {
    try {
        std::string bytes;
        if (!isFile) {
            bytes = pathOrText;
        } else if (Optional<XmlProblem> problem = readRegularFile(pathOrText, bytes)) {
            return problem;
        }
        return document.pack(std::move(bytes));
    } catch (const std::bad_alloc&) {
        return XmlProblem{"not enough memory", 0};
    } catch (const std::length_error&) {
        return XmlProblem{"not enough memory", 0};
    }
}

// The parser copies what the stream's buffer holds; this one is the text itself.
struct XmlTreeParser::Stream {
    struct Buffer : std::streambuf {
        void show(std::string_view text) {
            char* const begin = const_cast<char*>(text.data());
            setg(begin, begin, begin + text.size());
        }
    };
    Buffer buffer;
    std::istream input{&buffer};
};

XmlTreeParser::XmlTreeParser() : stream_(std::make_unique<Stream>()) {}
XmlTreeParser::~XmlTreeParser() = default;

Optional<XmlProblem> XmlTreeParser::parse(std::string_view packed, PropertyTree& tree) {
    namespace xml = boost::property_tree::xml_parser;
    stream_->buffer.show(packed);
    stream_->input.clear();
    try {
        xml::read_xml(stream_->input, tree, xml::no_comments);
    } catch (const xml::xml_parser_error& error) {
        return XmlProblem{error.message(), 0};
    } catch (const std::bad_alloc&) {
        return XmlProblem{"not enough memory", 0};
    }
    return {};
}

Optional<XmlProblem> loadTree(bool isFile, const TM_String& pathOrText, PropertyTree& tree) {
    PackedXml document;
    if (Optional<XmlProblem> problem = loadXml(isFile, pathOrText, document)) return problem;
    return XmlTreeParser().parse(document.text(), tree);
}

void reportXmlProblem(const TM_String& file, const XmlProblem& problem) {
    bridge::CCallbackCenter::Instance().Post(
        bridge::message::xmlError,
        Array<TM_String>{file, problem.message, std::to_string(problem.line)});
}

} // namespace tidemark::sluice::graph
