// SPDX-License-Identifier: Apache-2.0
// Scenes in binary streams: the record's form, the byte orders, and records that are none.
#include "persistence/scene_stream.h"

#include <gtest/gtest.h>

#include <functional>

#include "core/limits.h"
#include "persistence/files.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using platform::FileStream;
using platform::FileStreamEndian;
using platform::FileStreamError;
using platform::FileStreamRaw;
using platform::FileStreamRawBuffered;
using support::SceneBuilder;
using Order = FileStreamEndian::Order;

namespace {

class SceneStream : public testing::Test {
protected:
    SceneStream() {
        build.add("Real", "R").add("Add", "A").add("Evaluator", "E");
        build.connect("R.real", "A.in0").connect("A.result", "E.evaluate");
        build.pin("R.in")->setFloatValue(2.5f);
        EXPECT_TRUE(build.scene.write_XML_toString(text));
    }
    std::string write(const std::function<void(const std::string&)>& step) {
        step(folder.file("x.bin"));
        return support::contentOf(folder.file("x.bin"));
    }
    // What the scene is after reading the bytes with a raw stream.
    std::string readRaw(const std::string& bytes, SL_GraphScene& scene) {
        FileStreamRaw stream(folder.write("y.bin", bytes), FileStream::Mode::read);
        stream >> scene;
        return textOf(scene);
    }
    static std::string textOf(SL_GraphScene& scene) {
        TM_String out;
        EXPECT_TRUE(scene.write_XML_toString(out));
        return out;
    }

    support::TemporaryFolder folder;
    support::RecordingHost host;
    SceneBuilder build;
    TM_String text;
};

std::string littleLength(std::size_t length) {
    std::string bytes;
    for (unsigned i = 0; i < 4; ++i) bytes += static_cast<char>(length >> 8 * i);
    return bytes;
}

TEST_F(SceneStream, RecordIsALengthAndTheTextWithAZero) {
    const std::string little = write([&](const std::string& path) {
        FileStreamEndian stream(path, FileStream::Mode::write, Order::little);
        stream << build.scene;
    });
    EXPECT_EQ(little, littleLength(text.size() + 1) + text + '\0');
    EXPECT_EQ(little.find("layout"), std::string::npos);
    std::string big = write([&](const std::string& path) {
        FileStreamEndian stream(path, FileStream::Mode::write, Order::big);
        stream << build.scene;
    });
    std::swap(big[0], big[3]);
    std::swap(big[1], big[2]);
    EXPECT_EQ(big, little);
}

TEST_F(SceneStream, RawStreamsHaveTheMachinesOrder) {
    const std::string endian = write([&](const std::string& path) {
        FileStreamEndian stream(path, FileStream::Mode::write, FileStreamEndian::machineOrder());
        stream << build.scene;
    });
    EXPECT_EQ(write([&](const std::string& path) {
                  FileStreamRaw stream(path, FileStream::Mode::write);
                  stream << build.scene;
              }),
              endian);
    EXPECT_EQ(write([&](const std::string& path) {
                  FileStreamRawBuffered stream(path, FileStream::Mode::write);
                  stream << build.scene;
              }),
              endian);
    const std::string path = folder.file("x.bin");
    SL_GraphScene raw;
    SL_GraphScene buffered;
    SL_GraphScene ordered;
    FileStreamRaw rawStream(path, FileStream::Mode::read);
    FileStreamRawBuffered bufferedStream(path, FileStream::Mode::read);
    FileStreamEndian orderedStream(path, FileStream::Mode::read, FileStreamEndian::machineOrder());
    rawStream >> raw;
    bufferedStream >> buffered;
    orderedStream >> ordered;
    for (SL_GraphScene* scene : {&raw, &buffered, &ordered}) EXPECT_EQ(textOf(*scene), text);
    EXPECT_EQ(host.posts, std::vector<std::string>{});
}

TEST_F(SceneStream, SeveralRecordsFollowEachOther) {
    SL_GraphScene first;
    SL_GraphScene second;
    {
        FileStreamEndian stream(folder.file("x.bin"), FileStream::Mode::write, Order::big);
        stream.WriteUInt(0xdeadbeef);
        stream << build.scene << build.scene;
        stream.close();
    }
    FileStreamEndian stream(folder.file("x.bin"), FileStream::Mode::read, Order::big);
    EXPECT_EQ(stream.ReadUInt(), 0xdeadbeefu);
    stream >> first >> second;
    EXPECT_EQ(textOf(first), text);
    EXPECT_EQ(textOf(second), text);
    EXPECT_EQ(stream.bytesLeft(), 0u);
}

TEST_F(SceneStream, RecordCutAnywhereIsRefusedAndLeavesTheSceneAsItWas) {
    const std::string whole = littleLength(text.size() + 1) + text + '\0';
    SL_GraphScene scene;
    const std::string empty = textOf(scene);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_ANY_THROW(readRaw(whole.substr(0, length), scene)) << length;
        if (length > text.size()) continue;
        // The same text under a length that fits it, with and without the zero.
        const std::string shorter = whole.substr(4, length);
        if (length + 1 < text.size()) {
            EXPECT_THROW(readSceneRecord(shorter + '\0', scene), SceneStreamError) << length;
        }
        EXPECT_THROW(readRaw(littleLength(shorter.size()) + shorter, scene), SceneStreamError)
            << length;
    }
    EXPECT_EQ(textOf(scene), empty);
    EXPECT_EQ(readRaw(whole, scene), text);
}

TEST_F(SceneStream, LengthBeyondTheFileIsRefusedBeforeMemoryIsTaken) {
    SL_GraphScene scene;
    try {
        readRaw(littleLength(0xffffffff) + text + '\0', scene);
        FAIL() << "read";
    } catch (const SceneStreamError& error) {
        EXPECT_NE(std::string(error.what()).find("is said to have 4294967295 bytes"),
                  std::string::npos);
    }
}

TEST_F(SceneStream, DamagedRecordsEitherReadOrAreRefusedWhole) {
    const std::string record = text + '\0';
    for (std::size_t at = 0; at < record.size(); ++at) {
        for (const char flip : {'\x01', '\x20', '\x80', '\xff'}) {
            std::string damaged = record;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            SL_GraphScene scene;
            const std::string empty = textOf(scene);
            try {
                readSceneRecord(damaged, scene);
            } catch (const SceneStreamError& error) {
                EXPECT_STRNE(error.what(), "");
                EXPECT_EQ(textOf(scene), empty) << at;
            }
        }
    }
}

TEST_F(SceneStream, WhatIsNoSceneIsRefused) {
    SL_GraphScene scene;
    for (const std::string& record :
         {std::string(), std::string(1, '\0'), std::string("<scene/>\0", 9),
          std::string("<scene><nodes/></scene>"), std::string("<a\0b/>\0", 7),
          std::string("\xff\xfe\0", 3)}) {
        EXPECT_THROW(readSceneRecord(record, scene), SceneStreamError) << record;
    }
}

TEST_F(SceneStream, ReadingThatIsEndedTakesBackWhatItMade) {
    SceneBuilder target;
    target.add("Integer", "Mine");
    const std::string before = textOf(target.scene);
    limits::Limits limited;
    limited.maxNodes = 2;
    limits::set(limited);
    EXPECT_THROW(readSceneRecord(text + '\0', target.scene), SceneStreamError);
    limits::set({});
    EXPECT_EQ(textOf(target.scene), before);
}

/// Interrupts the reading as soon as it reports something.
class InterruptingHost : public support::RecordingHost {
public:
    explicit InterruptingHost(SL_GraphScene& scene) : scene_(scene) {}
    void post(int id, const Array<TM_String>& arguments) override {
        RecordingHost::post(id, arguments);
        scene_.requestInterrupt();
    }

private:
    SL_GraphScene& scene_;
};

TEST_F(SceneStream, InterruptAmongTheConnectionsTakesBackTheNodesToo) {
    SceneBuilder target;
    target.add("Integer", "Mine");
    const std::string before = textOf(target.scene);
    TM_String damaged = text;
    damaged.replace(damaged.find("root.R.real"), 11, "root.R.none");
    const InterruptingHost interrupting(target.scene);
    EXPECT_THROW(readSceneRecord(damaged + '\0', target.scene), SceneStreamError);
    EXPECT_EQ(interrupting.posts.size(), 1u);
    EXPECT_EQ(textOf(target.scene), before);
}

TEST_F(SceneStream, ExceptionWhileReadingTakesBackWhatWasRead) {
    class ThrowingHost : public support::RecordingHost {
    public:
        void post(int, const Array<TM_String>&) override { throw std::bad_alloc(); }
    };
    SceneBuilder target;
    target.add("Integer", "Mine");
    const std::string before = textOf(target.scene);
    TM_String damaged = text;
    damaged.replace(damaged.find("root.R.real"), 11, "root.R.none");
    const ThrowingHost throwing;
    EXPECT_THROW(readSceneRecord(damaged + '\0', target.scene), std::bad_alloc);
    EXPECT_EQ(textOf(target.scene), before);
}

TEST_F(SceneStream, FilesThatCannotBeOpenedAreNamed) {
    try {
        FileStreamRaw stream(folder.file("nothing.bin"), FileStream::Mode::read);
        FAIL() << "opened";
    } catch (const FileStreamError& error) {
        EXPECT_NE(std::string(error.what()).find("nothing.bin\" cannot be opened"),
                  std::string::npos)
            << error.what();
    }
    EXPECT_THROW(FileStreamRaw(folder.path(), FileStream::Mode::read), FileStreamError);
    EXPECT_THROW(FileStreamRaw("/dev/full", FileStream::Mode::write), FileStreamError);
}

TEST_F(SceneStream, StreamThatIsClosedRefuses) {
    FileStreamRaw stream(folder.file("x.bin"), FileStream::Mode::write);
    stream.close();
    EXPECT_THROW(stream << build.scene, FileStreamError);
}

} // namespace
