#include "AllocationProbe.h"
#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using pallix::test::virtualSlot;

namespace {

class RuntimeRootTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }
};

// The sixteen components in slot order, as the root hands them out.
std::vector<const void*> allComponents(PRuntime* root) {
    return {root->value(),   root->portbind(), root->location(),  root->shell(),
            root->string(),  root->picture(),  root->animation(), root->window(),
            root->cloud(),   root->config(),   root->cpid(),      root->crashCode(),
            root->restore(), root->factory(),  root->notify(),    root->pluginMapping()};
}

} // namespace

TEST_F(RuntimeRootTest, GetInstanceReturnsOneRootUntilFreed) {
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
    PRuntime* first = PRuntime::getInstance();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(PRuntime::getInstance(), first);
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, first);
}

TEST_F(RuntimeRootTest, AccessorCreatesItsComponentOnceOnly) {
    PRuntime* root = PRuntime::getInstance();
    const int before = pallix::test::nothrowAllocationCount();
    PRuntimeValue* value = root->value();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(pallix::test::nothrowAllocationCount(), before + 1);
    EXPECT_EQ(root->value(), value);
    EXPECT_EQ(pallix::test::nothrowAllocationCount(), before + 1);
}

TEST_F(RuntimeRootTest, EveryAccessorHandsOutItsOwnComponent) {
    PRuntime* root = PRuntime::getInstance();
    const std::vector<const void*> first = allComponents(root);
    for (const void* component : first) {
        EXPECT_NE(component, nullptr);
    }
    std::vector<const void*> sorted = first;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
    EXPECT_EQ(allComponents(root), first);
}

TEST_F(RuntimeRootTest, FreeInstanceWithoutRootDoesNothingAndTwiceIsHarmless) {
    PRuntime::freeInstance();
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
    ASSERT_NE(PRuntime::getInstance(), nullptr);
    PRuntime::freeInstance();
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
    PRuntime::freeInstance();
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
}

TEST_F(RuntimeRootTest, NewRootAfterFreeBuildsNewComponents) {
    PRuntime* root = PRuntime::getInstance();
    PRuntimeValue* oldValue = root->value();
    oldValue->set(static_cast<EPALLIX_RUNTIME_VALUE>(1), NVariant(42));
    PRuntime::freeInstance();

    PRuntime* fresh = PRuntime::getInstance();
    ASSERT_NE(fresh, nullptr);
    PRuntimeValue* newValue = fresh->value();
    ASSERT_NE(newValue, nullptr);
    const NVariant missing;
    // The new store is empty: the old component and its value are gone.
    EXPECT_EQ(&newValue->find(static_cast<EPALLIX_RUNTIME_VALUE>(1), missing), &missing);
}

TEST_F(RuntimeRootTest, ComponentsAreDestroyedInSlotOrder) {
    PRuntime* root = PRuntime::getInstance();
    const void* rootAddress = root;
    const std::vector<const void*> components = allComponents(root);

    pallix::test::startRecordingDeletes();
    PRuntime::freeInstance();
    const std::vector<const void*> deleted = pallix::test::stopRecordingDeletes();

    std::vector<const void*> componentDeletes;
    for (const void* pointer : deleted) {
        if (std::find(components.begin(), components.end(), pointer) != components.end()) {
            componentDeletes.push_back(pointer);
        }
    }
    EXPECT_EQ(componentDeletes, components);
    // The root's own memory goes last, after every component.
    ASSERT_FALSE(deleted.empty());
    EXPECT_EQ(deleted.back(), rootAddress);
}

TEST_F(RuntimeRootTest, ComponentsNeverRequestedAreNotCreatedAtDestruction) {
    PRuntime* root = PRuntime::getInstance();
    ASSERT_NE(root->cloud(), nullptr);
    const int before = pallix::test::nothrowAllocationCount();
    PRuntime::freeInstance();
    EXPECT_EQ(pallix::test::nothrowAllocationCount(), before);
}

TEST_F(RuntimeRootTest, FailedComponentAllocationReturnsNullAndRetries) {
    PRuntime* root = PRuntime::getInstance();
    pallix::test::failNextNothrowAllocations(1);
    EXPECT_EQ(root->cpid(), nullptr);
    PRuntimeCpid* cpid = root->cpid();
    EXPECT_NE(cpid, nullptr);
    EXPECT_EQ(root->cpid(), cpid);
}

TEST_F(RuntimeRootTest, FailedRootAllocationReturnsNullAndRetries) {
    pallix::test::failNextNothrowAllocations(1);
    EXPECT_EQ(PRuntime::getInstance(), nullptr);
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
    EXPECT_NE(PRuntime::getInstance(), nullptr);
}

TEST(RuntimeRootSlots, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntime::value), 3u);
    EXPECT_EQ(virtualSlot(&PRuntime::portbind), 4u);
    EXPECT_EQ(virtualSlot(&PRuntime::location), 5u);
    EXPECT_EQ(virtualSlot(&PRuntime::shell), 6u);
    EXPECT_EQ(virtualSlot(&PRuntime::string), 7u);
    EXPECT_EQ(virtualSlot(&PRuntime::picture), 8u);
    EXPECT_EQ(virtualSlot(&PRuntime::animation), 9u);
    EXPECT_EQ(virtualSlot(&PRuntime::window), 10u);
    EXPECT_EQ(virtualSlot(&PRuntime::cloud), 11u);
    EXPECT_EQ(virtualSlot(&PRuntime::config), 12u);
    EXPECT_EQ(virtualSlot(&PRuntime::cpid), 13u);
    EXPECT_EQ(virtualSlot(&PRuntime::crashCode), 14u);
    EXPECT_EQ(virtualSlot(&PRuntime::restore), 15u);
    EXPECT_EQ(virtualSlot(&PRuntime::factory), 16u);
    EXPECT_EQ(virtualSlot(&PRuntime::notify), 17u);
    EXPECT_EQ(virtualSlot(&PRuntime::pluginMapping), 18u);
}

TEST(RuntimeLibrary, LoadAndUnloadFunctionsCreateNoRoot) {
    _Pallix_Runtime_Dynamic_Library_Init();
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
    _Pallix_Runtime_Dynamic_Library_Fini();
    EXPECT_EQ(PRuntime::_globalFrameworkRuntime, nullptr);
}
