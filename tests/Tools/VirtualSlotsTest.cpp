// The order of the virtual operations. What a class adds stands behind what it inherits; the first
// one that a class derived here adds tells how many entries there are.

#include "support/VirtualSlots.h"

#include "Tools/Array.h"
#include "Tools/Exception.h"
#include "Tools/ParameterContainer.h"
#include "Tools/ProfileTimer.h"

#include <gtest/gtest.h>

using TestSupport::SlotOf;

namespace {

TEST(VirtualSlots, AnExceptionAnswersInBothWays) {
    struct ClNext : ClException {
        using ClException::ClException;
        virtual void Added() {}
    };
    EXPECT_EQ(SlotOf(&ClException::what), 2);
    EXPECT_EQ(SlotOf(&ClException::What), 3);
    EXPECT_EQ(SlotOf(&ClNext::Added), 4);
}

TEST(VirtualSlots, AnExceptionIsAskedThroughThem) {
    struct ClWorded : ClException {
        using ClException::ClException;
        const char* What() const override { return "own words"; }
    };
    const ClWorded e(-35, true, "a", 1);
    EXPECT_STREQ(static_cast<const std::exception&>(e).what(), "own words");
}

TEST(VirtualSlots, AProfileTimerHasItsDestructorLast) {
    struct ClNext : ClProfileTimer {
        virtual void Added() {}
    };
    EXPECT_EQ(SlotOf(&ClProfileTimer::TimerStart), 0);
    EXPECT_EQ(SlotOf(&ClProfileTimer::TimerStop), 1);
    EXPECT_EQ(SlotOf(&ClNext::Added), 4);
}

template <class Array>
void ExpectArraySlots() {
    EXPECT_EQ(SlotOf(&Array::Entries), 2);
    EXPECT_EQ(SlotOf(&Array::New), 3);
    EXPECT_EQ(SlotOf(&Array::Clear), 4);
}

TEST(VirtualSlots, ArraysCountRenewAndClear) {
    ExpectArraySlots<TpArrayStatic<int>>();
    ExpectArraySlots<TpArrayDynamic<int, 10>>();
}

TEST(VirtualSlots, AParameterNodeHasItsOperationsInOrder) {
    struct ClNext : ClParameterBase {
        virtual void Added() {}
    };
    long nSlot = 2; // behind the destructor
    EXPECT_EQ(SlotOf(&ClParameterBase::GetName), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::SetName), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::GetDescription), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::SetDescription), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::Clone), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::CopyTo), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::CopyDefaultFrom), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::CopyDefaultFromValue), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::CopyValuesFrom), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::SetToDefault), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::SetToDefaultFrom), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::GetContainerInterface), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::GetParameterInterface), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::GetNumericInterface), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::GetEnumInterface), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::IsParameter), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::IsNumeric), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::IsEnum), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::IsPointer), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::IsString), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameterBase::SwapDefaultAndValue), nSlot++);
    EXPECT_EQ(SlotOf(&ClNext::Added), nSlot);
}

TEST(VirtualSlots, AParameterAddsItsOwnBehind) {
    struct ClNext : ClParameter {
        virtual void Added() {}
    };
    long nSlot = 23; // behind those of a node
    EXPECT_EQ(SlotOf(&ClParameter::IsDefault), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameter::IsContainer), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameter::SetValue), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameter::GetValue), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameter::GetDefaultValue), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameter::SetContainer), nSlot++);
    EXPECT_EQ(SlotOf(&ClParameter::GetParameterPtr), nSlot++);
    EXPECT_EQ(SlotOf(&ClNext::Added), nSlot);
}

TEST(VirtualSlots, ANumberAddsItsOwnBehind) {
    using ClNumber = TpParameterNumeric<double>;
    long nSlot = 30; // behind those of a parameter
    EXPECT_EQ(SlotOf(&ClNumber::IsInteger), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::IsFloat), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::IsSigned), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::GetDefault), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::SetDefault), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::GetNumber), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::SetNumber), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::GetLowerBoundary), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::SetLowerBoundary), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::GetUpperBoundary), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::SetUpperBoundary), nSlot++);
    EXPECT_EQ(SlotOf(static_cast<bool (ClNumber::*)() const>(&ClNumber::IsValueInRange)), nSlot++);
    EXPECT_EQ(SlotOf(static_cast<bool (ClNumber::*)(double) const>(&ClNumber::IsValueInRange)),
              nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::IsValueInRangeT), nSlot++);
    EXPECT_EQ(SlotOf(&ClNumber::HasRange), nSlot++);
}

TEST(VirtualSlots, NamedValuesAddTheirOwnBehind) {
    using ClNamed = TpParameterEnumPointer<bool>;
    long nSlot = 30; // behind those of a parameter
    EXPECT_EQ(SlotOf(&ClNamed::AddValue), nSlot++);
    EXPECT_EQ(SlotOf(static_cast<bool (ClNamed::*)(const char*)>(&ClNamed::RemoveValue)), nSlot++);
    EXPECT_EQ(SlotOf(static_cast<bool (ClNamed::*)(bool)>(&ClNamed::RemoveValue)), nSlot++);
    EXPECT_EQ(SlotOf(&ClNamed::GetValueNameCount), nSlot++);
    EXPECT_EQ(SlotOf(&ClNamed::GetValueName), nSlot++);
}

} // namespace
