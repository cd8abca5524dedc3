#include "tools/host/config/json_lines.h"

#include <nlohmann/json.hpp>

#include <iterator>
#include <set>
#include <vector>

namespace tovik_host::config {

namespace {

/// The line of the character that the parser took last. A line break counts once the parser goes
/// on behind it, since the parser looks one character ahead to find the end of a number.
struct LineCounter
{
    int line = 1;
    bool behind_break = false;

    void take(char character)
    {
        line += behind_break ? 1 : 0;
        behind_break = character == '\n';
    }
};

/// Walks over the text for the parser and counts.
class CountingIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* position, LineCounter* counter)
        : position_(position),
          counter_(counter)
    {}

    reference operator*() const { return *position_; }
    CountingIterator& operator++()
    {
        counter_->take(*position_++);
        return *this;
    }
    CountingIterator operator++(int)
    {
        const CountingIterator old = *this;
        ++*this;
        return old;
    }
    bool operator==(const CountingIterator& other) const { return position_ == other.position_; }
    bool operator!=(const CountingIterator& other) const { return !(*this == other); }

private:
    const char* position_;
    LineCounter* counter_;
};

/// One object or array that the parser is in.
struct Level
{
    bool is_array = false;
    std::size_t next_index = 0;
    std::string name;            ///< Of the current member.
    std::set<std::string> names; ///< Of all members so far.
};

/// The reason in a message of the JSON library, without the text around the place, which may be the
/// password.
std::string reasonOf(const std::string& message)
{
    const std::size_t dash = message.find(" - ");
    const std::size_t start = dash == std::string::npos ? 0 : dash + 3;
    return message.substr(start, message.find("; last read", start) - start);
}

class LineHandler : public nlohmann::json_sax<nlohmann::json>
{
public:
    LineHandler(const LineCounter& counter, JsonLines& result) : counter_(counter), result_(result)
    {}

    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t) override { return value(); }
    bool number_unsigned(number_unsigned_t) override { return value(); }
    bool number_float(number_float_t, const string_t&) override { return value(); }
    bool string(string_t&) override { return value(); }
    bool binary(binary_t&) override { return value(); }
    bool start_object(std::size_t) override { return open(false); }
    bool start_array(std::size_t) override { return open(true); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override
    {
        Level& level = levels_.back();
        level.name = name;
        result_.lines[pointer()] = counter_.line;
        if (level.names.insert(name).second)
            return true;
        return fail("member \"" + name + "\" stands twice in one object");
    }

    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override
    {
        return fail("not valid JSON: " + reasonOf(error.what()));
    }

private:
    bool value()
    {
        if (levels_.empty() || !levels_.back().is_array)
            return true;
        result_.lines[pointer()] = counter_.line;
        ++levels_.back().next_index;
        return true;
    }

    bool open(bool is_array)
    {
        if (!levels_.empty() && levels_.back().is_array)
            result_.lines[pointer()] = counter_.line;
        levels_.emplace_back();
        levels_.back().is_array = is_array;
        return true;
    }

    bool close()
    {
        levels_.pop_back();
        if (!levels_.empty() && levels_.back().is_array)
            ++levels_.back().next_index;
        return true;
    }

    bool fail(const std::string& problem)
    {
        result_.problem = problem;
        result_.problem_line = counter_.line;
        return false;
    }

    std::string pointer() const
    {
        nlohmann::json::json_pointer path;
        for (const Level& level : levels_) {
            if (level.is_array)
                path /= level.next_index;
            else
                path /= level.name;
        }
        return path.to_string();
    }

    const LineCounter& counter_;
    JsonLines& result_;
    std::vector<Level> levels_;
};

} // namespace

JsonLines findJsonLines(const std::string& text)
{
    JsonLines result;
    result.lines[""] = 1;
    LineCounter counter;
    LineHandler handler(counter, result);
    nlohmann::json::sax_parse(CountingIterator(text.data(), &counter),
                              CountingIterator(text.data() + text.size(), &counter), &handler);
    return result;
}

} // namespace tovik_host::config
