#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <zelkin/ValidationLog.h>

TEST(ValidationLog, OnlyTheStateDecidesErrorOrWarning)
{
    ValidationLog log;
    EXPECT_EQ(log.GetValidationState(), NotValidated);
    EXPECT_TRUE(log.GetValidationMessage().empty());
    EXPECT_EQ(log.GetNbErrorInfo(), 0);
    EXPECT_FALSE(log.IsErrorOrWarning());

    log.SetValidationState(Valid, std::string());
    log.LogWarning(1, "w");
    log.LogWarning(2, "w");
    log.LogError(3, "e");
    EXPECT_FALSE(log.IsErrorOrWarning()) << "logging records leaves the state alone";
    for (ValidationState state : {NotValidated, Valid, Warning, Error}) {
        log.SetValidationState(state, "m");
        EXPECT_EQ(log.IsErrorOrWarning(), state >= Warning) << state;
    }
    EXPECT_EQ(log.GetNbErrorInfo(), 3);
    log.SetValidationState(Warning, log.GetValidationMessage());
    EXPECT_EQ(log.GetValidationMessage(), "m");
}

TEST(ValidationLog, RecordsKeepOrderAndSurviveCopiesAndMoves)
{
    ValidationLog log;
    log.LogWarning(15, "tilted");
    log.LogError(2, "missing");
    log.SetValidationState(Error, "bad");

    ValidationLog copy(log);
    copy.LogError(3, "more");
    ValidationLog assigned;
    assigned.LogWarning(9, "old");
    assigned = log;
    ValidationLog moved(std::move(assigned));
    ValidationLog moveAssigned;
    moveAssigned = std::move(moved);

    for (const ValidationLog* result : {&log, &moveAssigned}) {
        EXPECT_EQ(result->GetValidationState(), Error);
        EXPECT_EQ(result->GetValidationMessage(), "bad");
        ASSERT_EQ(result->GetNbErrorInfo(), 2);
        const ValidationLog::ErrorInfo& first = result->GetErrorInfo(0);
        EXPECT_EQ(first.GetNodeId(), 15);
        EXPECT_EQ(first.GetMessage(), "tilted");
        EXPECT_TRUE(first.IsWarning() && !first.IsError());
        const ValidationLog::ErrorInfo& second = result->GetErrorInfo(1);
        EXPECT_EQ(second.GetNodeId(), 2);
        EXPECT_EQ(second.GetSeverity(), Error);
        EXPECT_TRUE(second.IsError() && !second.IsWarning());
    }
    EXPECT_EQ(copy.GetNbErrorInfo(), 3);
}
