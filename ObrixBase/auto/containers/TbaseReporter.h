// TbaseReporter: where a long operation (a fit, an import, a tessellation) reports its progress,
// its warnings and its errors, and asks whether the user wants it to stop. The operation calls
// the public functions; an application or a test derives from the class and overrides the
// protected sinks. Left as it is, everything goes to the platform's user reporting.
#ifndef OBRIX_AUTO_CONTAINERS_TBASEREPORTER_H
#define OBRIX_AUTO_CONTAINERS_TBASEREPORTER_H

#include "Base/BaseExport.h"
#include "ObrixBase/ObrixExport.h"

/// Progress, warnings and errors of one long operation. Progress is reported only when its
/// whole percentage changes, so an operation may call progress() in its innermost loop. The
/// reporter counts the warnings and errors it passed on. Not copyable. The default sinks send
/// progress to rptStatus as "<task>: <n>%", warnings to rptUser as "Warning: <text>" and
/// errors to rptError as the text itself.
class OBRIX_API TbaseReporter {
public:
    /// A reporter for the task `task` (copied; null is taken as "").
    explicit TbaseReporter(const char* task = "") noexcept;
    TbaseReporter(const TbaseReporter&) = delete;
    TbaseReporter& operator=(const TbaseReporter&) = delete;
    virtual ~TbaseReporter();

    /// The task name that progress reports carry.
    const char* task() const noexcept { return task_; }

    /// Reports that `fraction` of the work is done, clamped to [0, 1] (NaN counts as 0). The
    /// progress sink is called only when the whole percentage differs from the last one
    /// reported.
    void progress(double fraction);
    /// Reports a warning, printf-style. The text is cut at 1023 characters.
    void warning(const char* format, ...) BASE_PRINTF(2, 3);
    /// Reports an error, printf-style. The text is cut at 1023 characters.
    void error(const char* format, ...) BASE_PRINTF(2, 3);
    /// 1 when the operation should stop as soon as it can leave its data consistent.
    int cancelled() { return cancelRequested(); }

    ///@{
    /// How many warnings and errors were reported.
    int warningCount() const noexcept { return warnings_; }
    int errorCount() const noexcept { return errors_; }
    ///@}

protected:
    /// Receives a percentage from 0 to 100 that differs from the previous one.
    virtual void reportProgress(const char* task, int percent);
    /// Receives the formatted text of a warning.
    virtual void reportWarning(const char* text);
    /// Receives the formatted text of an error.
    virtual void reportError(const char* text);
    /// Answers cancelled(); the default never cancels.
    virtual int cancelRequested();

private:
    char task_[128];
    int lastPercent_ = -1;
    int warnings_ = 0;
    int errors_ = 0;
};

#endif
