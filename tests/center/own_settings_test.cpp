#include "center/frame/own_settings.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "platform/system/files.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::center {
namespace {

class OwnSettingsTest : public testing::Test {
  protected:
    static OwnSettings Of(const std::string& user) {
        OwnSettings settings;
        settings.Open(user);
        return settings;
    }
    fakes::FakeSurroundings surroundings_;
};

TEST_F(OwnSettingsTest, WhatOneWindowPutsTheNextOneOfThatUserFinds) {
    EXPECT_EQ(Of("7").Text("grid.order"), "");
    EXPECT_TRUE(Of("7").IsOn("entry.proposals", true));
    Of("7").Put("grid.order", "2,1,3");
    Of("7").PutOn("entry.proposals", false);
    EXPECT_EQ(Of("7").Text("grid.order"), "2,1,3");
    EXPECT_FALSE(Of("7").IsOn("entry.proposals", true));
    EXPECT_EQ(Of("8").Text("grid.order"), "");
    EXPECT_EQ(Of("17").Text("grid.order"), "");
}

TEST_F(OwnSettingsTest, TwoWindowsDoNotUndoEachOthersSettings) {
    const OwnSettings first = Of("7");
    const OwnSettings second = Of("7");
    first.Put("a", "1");
    second.Put("b", "2");
    first.Put("c", "3");
    EXPECT_EQ(second.Text("a") + second.Text("b") + second.Text("c"), "123");
    second.Put("a", "");
    EXPECT_EQ(first.Text("a"), "");
}

TEST_F(OwnSettingsTest, WithoutAUserNothingIsWritten) {
    Of("").Put("a", "1");
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(surroundings_.folders->data)));
    EXPECT_EQ(Of("").Text("a"), "");
}

TEST_F(OwnSettingsTest, AFolderThatTakesNoFilesIsNoError) {
    // A file stands where the folder should be.
    std::ofstream(system::PathFromUtf8(surroundings_.folders->data)) << "in the way";
    Of("7").Put("a", "1");
    EXPECT_EQ(Of("7").Text("a"), "");
    EXPECT_TRUE(surroundings_.messageBoxes->Texts().empty());
}

}  // namespace
}  // namespace vicenter::center
