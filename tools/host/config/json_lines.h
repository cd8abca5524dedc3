#ifndef TOOLS_HOST_CONFIG_JSON_LINES_H
#define TOOLS_HOST_CONFIG_JSON_LINES_H

#include <map>
#include <string>

namespace tovik_host::config {

/// Where the members and elements of a JSON text stand, and what is wrong with the text.
struct JsonLines
{
    /// The line, from 1 on, of every value by its JSON pointer; of a member, the line of its name.
    std::map<std::string, int> lines;
    /// What the text breaks; empty when it is JSON without repeated members.
    std::string problem;
    int problem_line = 0;
};

/// Reads \a text through once and notes the line of everything in it.
JsonLines findJsonLines(const std::string& text);

} // namespace tovik_host::config

#endif
