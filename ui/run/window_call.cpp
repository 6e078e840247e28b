#include "ui/run/window_call.h"

#include <QCoreApplication>
#include <QPointer>
#include <utility>
#include <vector>

namespace vicenter::ui {

namespace {

struct PutOff {
    QPointer<QObject> whose;
    std::function<void()> work;
};

std::vector<PutOff>& Waiting() {
    static std::vector<PutOff> waiting;
    return waiting;
}

}  // namespace

void WindowCall::Afterwards(QObject& whose, std::function<void()> work) {
    if (!IsUnderWay()) return work();
    Waiting().push_back({&whose, std::move(work)});
}

void WindowCall::RunPutOff() {
    // What runs here may put off more, for behind itself.
    for (const PutOff& next : std::exchange(Waiting(), {})) {
        if (next.whose) next.work();
    }
}

void DeleteClosed() {
    if (!WindowCall::IsUnderWay()) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace vicenter::ui
