#pragma once

#include <lgb/ITextCreator.h>
#include <nsa/zel/export.h>

namespace lgb {

/// Answers `containsId` by trying: a code is known unless its text is exactly "unknown entry".
class TQZEL_EXPORT BaseTextCreator : public ITextCreator {
public:
    /// True also when the text can't be made without parameters.
    bool containsId(const code::Code& code) const override;

    ~BaseTextCreator() override;
};

}  // namespace lgb
