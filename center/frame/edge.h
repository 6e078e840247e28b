#pragma once

// The edge between the rules of a window and whoever calls them. Whatever a view asks for comes in by one of
// two ways; both work for the window's own user and on its own account set, and an error of the component
// ends the work there and is told. User-interface thread only.

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
    // finishTyping: hands in what is being typed and resolves it. ended: forgets what the user has answered.
    Edge(const WindowState& state, std::function<void()> finishTyping, std::function<void()> ended)
        : state_(state), finishTyping_(std::move(finishTyping)), ended_(std::move(ended)) {}

    // What leaves typing alone: moving about, typing itself, asking. The result of an error is a fresh one.
    template <class Work>
    auto Look(Work work) const -> std::invoke_result_t<Work> {
        using Result = std::invoke_result_t<Work>;
        try {
            const entry::SessionScope session({state_.userId, state_.propsString});
            return work();
        } catch (const automation::Error& error) {
            Tell(store::EngineTextInChinese(error.Text()));
        }
        if constexpr (!std::is_void_v<Result>) return Result{};
    }

    // What has been typed counts before any command looks at the grid. An answer that its questions got holds
    // until it ends, whichever way, with the commands that it runs itself.
    template <class Work>
    auto Command(Work work) const -> std::invoke_result_t<Work> {
        using Result = std::invoke_result_t<Work>;
        return Look([&]() -> Result {
            const Running running(*this);
            finishTyping_();
            // The host, asked about what was typed, may have closed the window: nothing begins in it any
            // more.
            if (state_.closing) return Result();
            return work();
        });
    }

    // What a window does last of all.
    void Last(const std::function<void()>& work) const {
        Look([&] {
            const Running running(*this);
            finishTyping_();
            work();
        });
    }

  private:
    class Running {
      public:
        explicit Running(const Edge& edge) : edge_(edge) { ++edge_.running_; }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running() {
            if (--edge_.running_ == 0) edge_.ended_();
        }

      private:
        const Edge& edge_;
    };

    const WindowState& state_;
    std::function<void()> finishTyping_;
    std::function<void()> ended_;
    mutable int running_ = 0;
};

}  // namespace vicenter::center
