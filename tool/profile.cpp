// SPDX-License-Identifier: Apache-2.0
// Making and printing profiles.
#include "tool/profile.h"

#include <algorithm>
#include <cmath>

#include "tool/console.h"

namespace tidemark::tool {

namespace {

using weft::Timer;

// A longer table is not read; the JSON list has all rows.
constexpr std::size_t mostRowsPrinted = 50;

uint64_t memoryOf(const sluice::graph::SL_GraphScene& scene, UpdateRecorder::Subject subject) {
    if (subject < 0) return 0;
    const auto* node = static_cast<const sluice::graph::NodeBase*>(
        scene.getNodePtrById(static_cast<unsigned>(subject)));
    return node && node->getCoreNode() ? node->getCoreNode()->estimatedSize() : 0;
}

double percentOf(double own, double seconds) { return seconds > 0.0 ? 100.0 * own / seconds : 0.0; }

std::string ownText(double own, double seconds) {
    return text::format("%10.4f %6.2f ", 1e3 * own, percentOf(own, seconds));
}

/// More digits say nothing.
double inNanoseconds(double seconds) { return std::round(seconds * 1e9) / 1e9; }

} // namespace

std::vector<ProfileRow> profileOf(const UpdateRecorder& recorder,
                                  const sluice::graph::SL_GraphScene& scene,
                                  const sluice::graph::Node* hidden) {
    std::vector<ProfileRow> rows;
    for (const auto& [subject, sums] : recorder.sums()) {
        if (hidden && subject == static_cast<UpdateRecorder::Subject>(hidden->getId())) continue;
        rows.push_back({recorder.nameOf(subject), recorder.typeOf(subject), sums.calls,
                        Timer::seconds(sums.own), Timer::seconds(sums.total),
                        memoryOf(scene, subject)});
    }
    std::sort(rows.begin(), rows.end(), [](const ProfileRow& a, const ProfileRow& b) {
        return a.own != b.own ? a.own > b.own : a.node < b.node;
    });
    return rows;
}

Json profileJson(const std::vector<ProfileRow>& rows, double seconds) {
    Json list = Json::array();
    for (const ProfileRow& row : rows) {
        list.push_back({{"node", row.node},
                        {"type", row.type},
                        {"calls", row.calls},
                        {"own", inNanoseconds(row.own)},
                        {"total", inNanoseconds(row.total)},
                        {"percent", std::round(percentOf(row.own, seconds) * 1e3) / 1e3},
                        {"memory", row.memory}});
    }
    return list;
}

void printProfile(const std::vector<ProfileRow>& rows, double seconds, double outside) {
    console::out("    own ms      %       calls    total ms       bytes  node\n");
    const std::size_t printed = std::min(rows.size(), mostRowsPrinted);
    for (std::size_t i = 0; i < printed; ++i) {
        const ProfileRow& row = rows[i];
        const std::string numbers =
            text::format("%11llu %11.4f %11llu  ", static_cast<unsigned long long>(row.calls),
                         1e3 * row.total, static_cast<unsigned long long>(row.memory));
        console::out(ownText(row.own, seconds) + numbers +
                     console::printable(row.node + " (" + row.type + ")") + "\n");
    }
    if (printed < rows.size()) {
        double rest = 0.0;
        for (std::size_t i = printed; i < rows.size(); ++i) rest += rows[i].own;
        console::out(ownText(rest, seconds) + " in all of " +
                     std::to_string(rows.size() - printed) + " more\n");
    }
    console::out(ownText(outside, seconds) + " outside of nodes\n");
}

} // namespace tidemark::tool
