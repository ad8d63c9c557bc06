/// \file
/// Text from outside, made fit for a terminal.
#pragma once

#include <string>
#include <string_view>

/// `text` with a question mark in place of every byte that is no visible character of UTF-8:
/// control bytes could change the terminal.
std::string Printable(std::string_view text);

/// The same in quotes, and shortened to what fits a line.
std::string Quoted(std::string_view text);
