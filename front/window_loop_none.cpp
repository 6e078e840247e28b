// Built without a window system: showing the template center is refused by its entry class, and there are no
// events.

#include "automation/error.h"
#include "front/window_loop.h"

namespace vicenter::front {

namespace {

class NoWindowLoop : public WindowLoop {
  public:
    void Process(int) override {
        throw automation::Error(automation::error_number::kCannotCreateObject,
                                "The library was built without a window system.", "VelaVICenter");
    }
    void Run() override { Process(0); }
    std::size_t OpenWindows() const override { return 0; }
    void CloseAll() override {}
    bool IsUnderWay() const override { return false; }
};

}  // namespace

std::unique_ptr<WindowLoop> WindowLoop::Create() {
    return std::make_unique<NoWindowLoop>();
}

}  // namespace vicenter::front
