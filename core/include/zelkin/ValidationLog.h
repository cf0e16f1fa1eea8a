#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zelkin/CharacterizationExport.h>

// Ordered by severity: merging takes the larger value.
enum ValidationState : int32_t
{
    NotValidated = 0,
    Valid = 1,
    Warning = 2,
    Error = 3
};

class ZELKIN_CHARACTERIZATION_EXPORT ValidationLog
{
public:
    class ZELKIN_CHARACTERIZATION_EXPORT ErrorInfo
    {
    public:
        ErrorInfo(int nodeId, ValidationState severity, const std::string& message);

        int GetNodeId() const { return mNodeId; }
        ValidationState GetSeverity() const { return mSeverity; }
        const std::string& GetMessage() const { return mMessage; }
        bool IsError() const { return mSeverity == Error; }
        bool IsWarning() const { return mSeverity == Warning; }

    private:
        int32_t mNodeId;
        ValidationState mSeverity;
        std::string mMessage;
    };

    ValidationLog();
    ValidationLog(const ValidationLog&);
    ValidationLog(ValidationLog&&) noexcept;
    ValidationLog& operator=(const ValidationLog&);
    ValidationLog& operator=(ValidationLog&&) noexcept;
    ~ValidationLog();

    void SetValidationState(ValidationState state, const std::string& message);
    ValidationState GetValidationState() const;
    const std::string& GetValidationMessage() const;
    bool IsErrorOrWarning() const;

    void LogError(int nodeId, const std::string& message);
    void LogWarning(int nodeId, const std::string& message);

    int GetNbErrorInfo() const;
    // The index is not range-checked: callers stay within 0 to GetNbErrorInfo() - 1.
    const ErrorInfo& GetErrorInfo(int index) const;

private:
    ValidationState mState;
    std::string mMessage;
    std::vector<ErrorInfo> mErrorInfos;
};
