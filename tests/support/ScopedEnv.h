// An environment variable set (or with null removed) for one scope, and put back as it was
// when the scope ends.
#ifndef OBRIX_TESTS_SUPPORT_SCOPEDENV_H
#define OBRIX_TESTS_SUPPORT_SCOPEDENV_H

#include <string>

#include "Base/qvOS/Env.h"

namespace obrix::test {

class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name_(name) {
        had_ = qvOS::GetEnv(name, old_);
        qvOS::SetEnv(name, value);
    }
    ~ScopedEnv() { qvOS::SetEnv(name_.c_str(), had_ ? old_.c_str() : nullptr); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string name_;
    qvString::CString old_;
    bool had_ = false;
};

} // namespace obrix::test

#endif
