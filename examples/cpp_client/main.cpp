// Reads a JSON text from the command line into late-bound values, tells what it holds and writes it again.

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include <vicenter/vicenter.h>

namespace {

void Check(vic_status status) {
    if (status != 0) throw std::runtime_error(vic_error_description());
}

class Variant {
  public:
    Variant() = default;
    explicit Variant(const std::string& text) { Check(vic_set_text(&value_, text.data(), text.size())); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { vic_clear(&value_); }

    vic_variant* operator&() { return &value_; }
    const vic_variant* operator->() const { return &value_; }
    std::string Text() const { return {value_.value.text.data, value_.value.text.length}; }

  private:
    vic_variant value_{};
};

class Object {
  public:
    explicit Object(const char* progId) { Check(vic_create(progId, &object_)); }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    ~Object() { vic_release(object_); }

    void Call(const char* name, Variant& argument, Variant& result) {
        Check(vic_call(object_, name, &argument, 1, &result));
    }

  private:
    vic_object* object_ = nullptr;
};

void Run(const char* text) {
    Object json("VelaVICenter.VbsJson");
    Variant input{std::string(text)};
    Variant value;
    json.Call("Decode", input, value);
    if (value->type == VIC_ARRAY) std::printf("an array of %zu values\n", value->value.array.count);
    Variant output;
    json.Call("Encode", value, output);
    std::printf("%s\n", output.Text().c_str());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s JSON\n", argv[0]);
        return 2;
    }
    int status = 0;
    try {
        Run(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        status = 1;
    }
    return vic_shutdown() == 0 ? status : 1;
}
