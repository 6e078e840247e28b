#pragma once

// An input whose disk fails behind the text that it begins with.

#include <sstream>
#include <stdexcept>
#include <string>

namespace vicenter::host::test {

class BrokenInput : public std::stringbuf {
  public:
    explicit BrokenInput(const std::string& text) : std::stringbuf(text) {}

  protected:
    int_type underflow() override {
        const int_type next = std::stringbuf::underflow();
        if (traits_type::eq_int_type(next, traits_type::eof())) throw std::runtime_error("disk");
        return next;
    }
};

}  // namespace vicenter::host::test
