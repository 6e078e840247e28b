// Windows that a COM host has opened: the library stays while one is there, and ends what it has begun behind
// the last one.

#include "tests/front/com_server_fixture.h"
#include "vicenter/vicenter.h"

namespace vicenter::front {
namespace {

using automation::ObjectRef;

class ComWindows : public ComServer {
  protected:
    // There is no account set, and nobody to read what the component says about it.
    void AnswerMessages() {
        const auto set = Export<decltype(vic_set_message_handler)>("vic_set_message_handler");
        ASSERT_EQ(
            set([](void*, const char*, vic_int32, vic_int32, const char*) { return vic_int32{1}; }, nullptr),
            0);
    }
};

TEST_F(ComWindows, KeepTheLibraryUntilTheLastOneIsClosed) {
    for (int round = 1; round <= 2; ++round) {
        AnswerMessages();
        ObjectRef host = com::CreateForeign("VelaVICenter.Host");
        EXPECT_EQ(host->Get("OpenWindows").ToInt32(), 0);
        ObjectRef application = com::CreateForeign("VelaVICenter.aplication");
        application->Call("ShowVICenter");
        application->Call("ShowVICenter");
        application.reset();
        host->Call("ProcessEvents", {1});
        EXPECT_EQ(host->Get("OpenWindows").ToInt32(), 2);
        host.reset();
        EXPECT_EQ(CanUnload(), S_FALSE) << "round " << round;
        host = com::CreateForeign("VelaVICenter.Host");
        host->Call("CloseWindows");
        EXPECT_EQ(host->Get("OpenWindows").ToInt32(), 0);
        EXPECT_EQ(CanUnload(), S_FALSE) << "an object is held";
        host.reset();
        EXPECT_EQ(CanUnload(), S_OK) << "round " << round;
    }
}

}  // namespace
}  // namespace vicenter::front
