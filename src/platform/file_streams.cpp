// SPDX-License-Identifier: Apache-2.0
// Binary files.
#include "platform/file_streams.h"

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <utility>

namespace tidemark::platform {

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& what) {
    throw FileStreamError("\"" + path + "\" " + what);
}

} // namespace

FileStream::FileStream(const std::string& path, Mode mode, std::size_t bufferBytes) : path_(path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        fail(path, "is no regular file");
    }
    file_ = std::fopen(path.c_str(), mode == Mode::read ? "rb" : "wb");
    if (!file_) fail(path, std::string("cannot be opened: ") + std::strerror(errno));
    std::setvbuf(file_, nullptr, bufferBytes == 0 ? _IONBF : _IOFBF, bufferBytes);
}

FileStream::~FileStream() {
    if (file_) std::fclose(file_);
}

void FileStream::close() {
    std::FILE* const file = std::exchange(file_, nullptr);
    if (file && std::fclose(file) != 0) {
        fail(path_, std::string("cannot be written: ") + std::strerror(errno));
    }
}

void FileStream::readBytes(void* bytes, std::size_t count) {
    if (!file_ || std::fread(bytes, 1, count, file_) != count) {
        fail(path_, "ends in the middle of a record");
    }
}

void FileStream::writeBytes(const void* bytes, std::size_t count) {
    if (!file_ || std::fwrite(bytes, 1, count, file_) != count) {
        fail(path_, std::string("cannot be written: ") + std::strerror(errno));
    }
}

uint64_t FileStream::bytesLeft() const {
    struct stat status {};
    if (!file_ || fstat(fileno(file_), &status) != 0) return 0;
    const off_t position = ftello(file_);
    return position < status.st_size ? static_cast<uint64_t>(status.st_size - position) : 0;
}

FileStreamEndian::Order FileStreamEndian::machineOrder() {
    return std::endian::native == std::endian::big ? Order::big : Order::little;
}

uint32_t FileStreamEndian::ReadUInt() {
    unsigned char bytes[4];
    readBytes(bytes, sizeof(bytes));
    if (order_ == Order::big) std::reverse(std::begin(bytes), std::end(bytes));
    return uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 |
           uint32_t(bytes[3]) << 24;
}

void FileStreamEndian::WriteUInt(uint32_t number) {
    unsigned char bytes[4];
    for (unsigned i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(number >> 8 * i);
    if (order_ == Order::big) std::reverse(std::begin(bytes), std::end(bytes));
    writeBytes(bytes, sizeof(bytes));
}

} // namespace tidemark::platform
