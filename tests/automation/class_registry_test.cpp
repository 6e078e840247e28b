#include "automation/class_registry.h"

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
