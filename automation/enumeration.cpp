#include "automation/enumeration.h"

#include <utility>

namespace vicenter::automation {

namespace {

class Values final : public Enumerator {
  public:
    explicit Values(VariantArray values) : values_(std::move(values)) {}
    std::optional<Variant> Next() override {
        if (next_ == values_.size()) return std::nullopt;
        return values_[next_++];
    }

  private:
    VariantArray values_;
    std::size_t next_ = 0;
};

class Items final : public Enumerator {
  public:
    Items(ObjectRef collection, std::int32_t first) : collection_(std::move(collection)), first_(first) {}
    std::optional<Variant> Next() override {
        if (taken_ >= collection_->Get("Count").ToInt32()) return std::nullopt;
        return collection_->Get("Item", {Variant(first_ + taken_++)});
    }

  private:
    ObjectRef collection_;
    std::int32_t first_;
    std::int32_t taken_ = 0;
};

}  // namespace

std::unique_ptr<Enumerator> OverValues(VariantArray values) {
    return std::make_unique<Values>(std::move(values));
}

std::unique_ptr<Enumerator> OverItems(Object& collection, std::int32_t first) {
    return std::make_unique<Items>(collection.shared_from_this(), first);
}

}  // namespace vicenter::automation
