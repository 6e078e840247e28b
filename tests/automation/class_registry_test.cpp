#include "automation/class_registry.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "automation/member_table.h"

namespace vicenter::automation {
namespace {

class Plain : public TableObject<Plain> {
  public:
    static const MemberTable<Plain>& Members() {
        static const MemberTable<Plain> table{};
        return table;
    }
    std::string TypeName() const override { return "Plain"; }
};

TEST(ClassRegistry, CreatesByProgIdWithoutCase) {
    ClassRegistry registry;
    registry.Register("Vela.Plain", [] { return std::make_shared<Plain>(); });
    EXPECT_EQ(registry.Create("VELA.plain")->TypeName(), "Plain");
    EXPECT_TRUE(registry.IsRegistered("vela.PLAIN"));
}

TEST(ClassRegistry, EachCreationGivesAFreshObject) {
    ClassRegistry registry;
    registry.Register("A", [] { return std::make_shared<Plain>(); });
    EXPECT_NE(registry.Create("A"), registry.Create("A"));
}

TEST(ClassRegistry, UnknownProgIdCannotBeCreated) {
    ClassRegistry registry;
    registry.Register("Empty", [] { return ObjectRef(); });
    for (const char* progId : {"No.Such", "Empty"}) {
        try {
            registry.Create(progId);
            FAIL();
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), 429);
            EXPECT_EQ(error.Text(), "ActiveX component can't create object");
            EXPECT_EQ(error.Source(), progId);
        }
    }
}

TEST(ClassRegistry, WhatIsNotRegisteredIsLookedForFurther) {
    ClassRegistry registry;
    registry.Register("Own", [] { return std::make_shared<Plain>(); });
    std::vector<std::string> asked;
    registry.LookFurtherIn([&](std::string_view progId) -> ObjectRef {
        asked.emplace_back(progId);
        return progId == "Installed" ? std::make_shared<Plain>() : nullptr;
    });
    EXPECT_EQ(registry.Create("Installed")->TypeName(), "Plain");
    EXPECT_NE(registry.Create("Own"), nullptr);
    EXPECT_THROW(registry.Create("Neither"), Error);
    EXPECT_EQ(asked, (std::vector<std::string>{"Installed", "Neither"}));
    EXPECT_FALSE(registry.IsRegistered("Installed"));
    registry.LookFurtherIn(nullptr);
    EXPECT_THROW(registry.Create("Installed"), Error);
}

TEST(ClassRegistry, LaterRegistrationReplacesAndUnregisterRemoves) {
    ClassRegistry registry;
    registry.Register("A", [] { return ObjectRef(); });
    registry.Register("a", [] { return std::make_shared<Plain>(); });
    EXPECT_EQ(registry.Create("A")->TypeName(), "Plain");
    EXPECT_EQ(registry.ProgIds().size(), 1U);
    registry.Unregister("A");
    EXPECT_FALSE(registry.IsRegistered("A"));
}

TEST(ClassRegistry, RestorePutsTheProcessRegistryBack) {
    {
        ClassRegistry::Restore restore;
        ClassRegistry::Process().Register("Test.Temporary", [] { return std::make_shared<Plain>(); });
        EXPECT_EQ(CreateObject("Test.Temporary")->TypeName(), "Plain");
    }
    EXPECT_FALSE(ClassRegistry::Process().IsRegistered("Test.Temporary"));
}

}  // namespace
}  // namespace vicenter::automation
