#pragma once

// The edge between the rules of a window and whoever calls them. Whatever a view asks for comes in by one of
// two ways; both work for the window's own user, and an error of the component ends the work there and is
// told. User-interface thread only.

#include <functional>
#include <type_traits>
#include <utility>

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "entry/host_context.h"
#include "store/engine_text.h"

namespace vicenter::center {

class Edge {
  public:
    // finishTyping: hands in what is being typed and resolves it.
    Edge(const WindowState& state, std::function<void()> finishTyping)
        : state_(state), finishTyping_(std::move(finishTyping)) {}

    // What leaves typing alone: moving about, typing itself, asking. The result of an error is a fresh one.
    template <class Work>
    auto Look(Work work) const -> std::invoke_result_t<Work> {
        using Result = std::invoke_result_t<Work>;
        try {
            const entry::UserScope user(state_.userId);
            return work();
        } catch (const automation::Error& error) {
            Tell(store::EngineTextInChinese(error.Text()));
        }
        if constexpr (!std::is_void_v<Result>) return Result{};
    }

    // What has been typed counts before any command looks at the grid.
    template <class Work>
    auto Command(Work work) const -> std::invoke_result_t<Work> {
        return Look([&] {
            finishTyping_();
            return work();
        });
    }

  private:
    const WindowState& state_;
    std::function<void()> finishTyping_;
};

}  // namespace vicenter::center
