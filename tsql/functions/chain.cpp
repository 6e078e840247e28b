// Many operators in one call, which within each other would be deeper than SQLite lets calls nest.
//
// ts_chain(program, value, …): the program has '#' for the next value, and for an operator, behind its two
// sides, the operator itself, a letter for what it is of, the code of its type and ';'. So a - (b + 1) over
// integers is '##' '#' '+i56;' '-i56;'. NULL on either side of an operator gives NULL.

#include <charconv>
#include <vector>

#include "tsql/functions/arithmetic.h"
#include "tsql/functions/call.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

class Chain {
  public:
    explicit Chain(const FunctionCall& call) : call_(call) {}

    void Run() {
        std::string_view program = call_.Text(0);
        while (!program.empty()) {
            if (program.front() == '#') {
                stack_.push_back({next_++, {}});
                program.remove_prefix(1);
                continue;
            }
            const std::size_t end = program.find(';');
            Work(program[0], program[1], program.substr(2, end - 2));
            program.remove_prefix(end + 1);
        }
        Return(stack_.back());
    }

  private:
    // A value that was handed in, by its place, or one that has been worked out.
    struct Item {
        int place = 0;
        Value value;
    };

    bool IsNull(const Item& item) const {
        return item.place > 0 ? call_.IsNull(item.place) : item.value.IsNull();
    }
    std::int64_t Int(const Item& item) const {
        return item.place > 0 ? call_.Int(item.place) : item.value.Int();
    }
    double Real(const Item& item) const {
        return item.place > 0 ? call_.Real(item.place) : item.value.Real();
    }
    Decimal Exact(const Item& item) const {
        return item.place > 0 ? call_.Number(item.place) : item.value.Exact();
    }

    void Work(char operation, char kind, std::string_view code) {
        const Item right = std::move(stack_.back());
        stack_.pop_back();
        Item& left = stack_.back();
        Value result;
        if (!IsNull(left) && !IsNull(right)) {
            std::int64_t number = 0;
            std::from_chars(code.data(), code.data() + code.size(), number);
            result = Result(operation, kind, left, right, TypeFromCode(number));
        }
        left = {0, std::move(result)};
    }

    Value Result(char operation, char kind, Item& left, const Item& right, const SqlType& type) const {
        switch (kind) {
            case 'i':
                return Value(OfIntegers(operation, Int(left), Int(right), type));
            case 'd':
                return Value(OfDecimals(operation, Exact(left), Exact(right), type));
            case 'r':
                return Value(OfReals(operation, Real(left), Real(right)));
            default:
                break;
        }
        std::string text = left.place > 0 ? std::string(call_.Text(left.place)) : left.value.TakeText();
        text += right.place > 0 ? call_.Text(right.place) : std::string_view(right.value.Text());
        // What is beyond the longest text of the type is cut; without a type nothing is.
        if (type.IsUnknown()) return Value(std::move(text));
        return Convert(Value(std::move(text)), SqlType::Of(type.kind, kMaxLength), type);
    }

    void Return(const Item& item) const {
        if (item.place > 0) return call_.ReturnArgument(item.place);
        switch (item.value.Raw().index()) {
            case 0:
                return;
            case 1:
                return call_.Return(item.value.Int());
            case 2:
                return call_.Return(item.value.Real());
            case 3:
                return call_.Return(item.value.Exact());
            default:
                return call_.Return(std::string_view(item.value.Text()));
        }
    }

    const FunctionCall& call_;
    std::vector<Item> stack_;
    int next_ = 1;
};

void ChainFunction(FunctionCall& call) {
    Chain(call).Run();
}

constexpr const SqlFunction* kOthers[] = {&kChainCall};

}  // namespace

const SqlFunction kChainCall = Scalar<ChainFunction>("ts_chain", -1);

FunctionSet ChainFunctions() {
    return {{}, kOthers};
}

}  // namespace vicenter::tsql::engine
