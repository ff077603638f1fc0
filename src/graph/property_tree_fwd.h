// SPDX-License-Identifier: Apache-2.0
// The document model of graph files, as a name only: clients need none of its headers.
#pragma once

#include <functional>
#include <string>

namespace boost::property_tree {
template <class Key, class Data, class Compare>
class basic_ptree;
} // namespace boost::property_tree

namespace tidemark::sluice::graph {

/// `boost::property_tree::ptree`.
using PropertyTree =
    boost::property_tree::basic_ptree<std::string, std::string, std::less<std::string>>;

} // namespace tidemark::sluice::graph
