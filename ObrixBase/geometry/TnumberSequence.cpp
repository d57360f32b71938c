#include "ObrixBase/geometry/TnumberSequence.h"

#include <climits>

namespace {

// A cursor over the text being read; every failure names the text and the 1-based column.
class SequenceReader {
public:
    explicit SequenceReader(const char* text) : text_(text), p_(text) {}

    void skipSpaces() {
        while (*p_ == ' ' || *p_ == '\t')
            ++p_;
    }
    bool atEnd() {
        skipSpaces();
        return *p_ == '\0';
    }
    bool accept(char c) {
        skipSpaces();
        if (*p_ != c)
            return false;
        ++p_;
        return true;
    }
    // An optional '-' and at least one digit, within the range of int.
    bool number(int& out, qvUtil::Error& error) {
        skipSpaces();
        const char* start = p_;
        bool negative = false;
        if (*p_ == '-') {
            negative = true;
            ++p_;
            skipSpaces();
        }
        if (*p_ < '0' || *p_ > '9') {
            error = fail(TnumberSequence::SyntaxError, "expected a number", p_);
            return false;
        }
        long long v = 0;
        while (*p_ >= '0' && *p_ <= '9') {
            v = v * 10 + (*p_++ - '0');
            // INT_MIN's magnitude is one more than INT_MAX's; stop before long long overflows.
            if (v > static_cast<long long>(INT_MAX) + 1) {
                error = fail(TnumberSequence::RangeError, "number out of range", start);
                return false;
            }
        }
        if (negative)
            v = -v;
        if (v > INT_MAX) {
            error = fail(TnumberSequence::RangeError, "number out of range", start);
            return false;
        }
        out = static_cast<int>(v);
        return true;
    }
    qvUtil::Error fail(int code, const char* what, const char* at) const {
        return qvUtil::Error(code, "Number sequence \"%s\": %s at column %d", text_, what,
                             static_cast<int>(at - text_) + 1);
    }
    qvUtil::Error failHere(int code, const char* what) {
        skipSpaces();
        return fail(code, what, p_);
    }
    const char* here() {
        skipSpaces();
        return p_;
    }

private:
    const char* text_;
    const char* p_;
};

// The range's last number: the final whole step from first that does not pass last.
int lastOnStep(int first, int last, int step) {
    const long long span = static_cast<long long>(last) - first;
    const long long whole = span / step * step; // truncates toward zero, either direction
    return static_cast<int>(first + whole);
}

// The one stored form of a range, so that equal sequences compare equal and the printed
// text reads back unchanged: last on a step, and step 1 for a single number.
TnumberSequence::Range makeRange(int first, int last, int step) {
    last = lastOnStep(first, last, step);
    return TnumberSequence::Range{first, last, first == last ? 1 : step};
}

} // namespace

std::int64_t TnumberSequence::Range::count() const noexcept {
    const long long span = static_cast<long long>(last) - first;
    return (span < 0 ? -span : span) / step + 1;
}

TnumberSequence::const_iterator& TnumberSequence::const_iterator::operator++() noexcept {
    if (value_ == range_->last) {
        ++range_;
        value_ = range_ != end_ ? range_->first : 0;
    } else {
        value_ += range_->last > range_->first ? range_->step : -range_->step;
    }
    return *this;
}

qvUtil::Error TnumberSequence::setFromText(const char* text) {
    if (!text)
        text = "";
    SequenceReader in(text);
    std::vector<Range> read;
    qvUtil::Error error;
    if (in.atEnd()) {
        ranges_.clear();
        return error;
    }
    for (;;) {
        int first = 0, last = 0, step = 1;
        if (!in.number(first, error))
            return error;
        last = first;
        if (in.accept('-')) {
            if (!in.number(last, error))
                return error;
            if (in.accept('x')) {
                const char* at = in.here();
                if (!in.number(step, error))
                    return error;
                if (step < 1)
                    return in.fail(StepError, "step must be at least 1", at);
            }
        }
        read.push_back(makeRange(first, last, step));
        if (in.atEnd())
            break;
        if (!in.accept(','))
            return in.failHere(SyntaxError, "expected ',' or the end");
    }
    ranges_.swap(read);
    return error;
}

qvString::CString TnumberSequence::text() const {
    qvString::CString out;
    for (const Range& r : ranges_) {
        if (!out.empty())
            out += ',';
        if (r.first == r.last)
            out += qvString::CString::format("%d", r.first);
        else if (r.step == 1)
            out += qvString::CString::format("%d-%d", r.first, r.last);
        else
            out += qvString::CString::format("%d-%dx%d", r.first, r.last, r.step);
    }
    return out;
}

qvUtil::Error TnumberSequence::append(int first, int last, int step) {
    if (step < 1)
        return qvUtil::Error(StepError, "Number sequence step %d: step must be at least 1", step);
    ranges_.push_back(makeRange(first, last, step));
    return qvUtil::Error();
}

int TnumberSequence::contains(int n) const noexcept {
    for (const Range& r : ranges_) {
        const long long lo = r.first < r.last ? r.first : r.last;
        const long long hi = r.first < r.last ? r.last : r.first;
        if (n >= lo && n <= hi && (static_cast<long long>(n) - r.first) % r.step == 0)
            return 1;
    }
    return 0;
}

std::int64_t TnumberSequence::count() const noexcept {
    std::int64_t n = 0;
    for (const Range& r : ranges_)
        n += r.count();
    return n;
}
