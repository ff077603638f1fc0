// SPDX-License-Identifier: Apache-2.0
// A process that writes numbers with a comma, in C and in C++.
#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace support {

// What streams ask how numbers look.
struct CommaNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// The process counts with a comma while this lives. `isSet` tells whether the C library knows the
/// locale, which the tests' environment provides.
class CommaLocale {
public:
    CommaLocale() : name_(std::setlocale(LC_ALL, nullptr)) {
        isSet_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
        global_ = std::locale::global(std::locale(std::locale(), new CommaNumbers));
    }
    ~CommaLocale() {
        std::locale::global(global_);
        std::setlocale(LC_ALL, name_.c_str());
    }
    bool isSet() const { return isSet_; }

private:
    std::string name_;
    std::locale global_;
    bool isSet_ = false;
};

} // namespace support
