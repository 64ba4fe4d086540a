#pragma once
// gcstring: the string type of the GenICam interfaces; a std::string with free conversion in both directions.
#include <string>
#include <utility>
#include <vector>

#include <GCBase/GCTypes.h>

namespace GenICam {

class gcstring : public std::string {
public:
  using std::string::string;
  gcstring() = default;
  gcstring(const std::string& text) : std::string(text) {}
  gcstring(std::string&& text) noexcept : std::string(std::move(text)) {}
  gcstring& operator=(const std::string& text) {
    std::string::operator=(text);
    return *this;
  }
  gcstring& operator=(const char* text) {
    std::string::operator=(text);
    return *this;
  }
};

class gcstring_vector : public std::vector<gcstring> {
public:
  using std::vector<gcstring>::vector;
};

}  // namespace GenICam
