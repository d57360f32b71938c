// TnumberSequence: an ordered sequence of whole numbers such as the frames to render, written
// as comma-separated numbers and ranges with steps: "1-10,15,20-30x2" is 1 to 10, 15, then 20,
// 22, ..., 30. Ranges may run downwards ("10-1x3" is 10, 7, 4, 1) and numbers may be negative
// ("-5--1"). The text form reads back to the same sequence.
#ifndef OBRIX_GEOMETRY_TNUMBERSEQUENCE_H
#define OBRIX_GEOMETRY_TNUMBERSEQUENCE_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"

/// The numbers of a list of ranges, in the order written; a number may occur more than once
/// when ranges overlap. Each range is kept as (first, last, step) with last reached exactly
/// from first by whole steps, so "1-10x4" is kept, and printed, as "1-9x4". Copying copies the
/// ranges (one allocation); nothing is reported, errors come back as qvUtil::Error values.
class OBRIX_API TnumberSequence {
public:
    /// Codes of the errors that setFromText and append return.
    enum ErrorCode : int {
        SyntaxError = 1, ///< the text is not a list of numbers and ranges
        StepError = 2,   ///< a step below 1
        RangeError = 3,  ///< a number outside the range of int
    };

    /// One range: first, first ± step, ... up to last, which is reached exactly.
    struct Range {
        /// The first number of the range.
        int first;
        /// The last number, reached exactly.
        int last;
        int step; ///< at least 1; the direction comes from first and last
        /// How many numbers the range holds.
        std::int64_t count() const noexcept;
        /// Same first, last and step.
        friend bool operator==(const Range&, const Range&) = default;
    };

    /// Walks the numbers in order. A forward iterator; changing the sequence invalidates it.
    class const_iterator {
    public:
        ///@{
        /// The standard iterator traits: a forward iterator over int values.
        using iterator_category = std::forward_iterator_tag;
        using value_type = int;
        using difference_type = std::ptrdiff_t;
        using pointer = const int*;
        using reference = int;
        ///@}

        /// An iterator over nothing; compare it only with other default iterators.
        const_iterator() noexcept = default;
        /// The current number.
        int operator*() const noexcept { return value_; }
        /// To the next number; past the last one it equals end().
        OBRIX_API const_iterator& operator++() noexcept;
        /// Post-increment: moves on, returns the old position.
        const_iterator operator++(int) noexcept {
            const_iterator r = *this;
            ++*this;
            return r;
        }
        /// Same position: the same range and the same number.
        bool operator==(const const_iterator& o) const noexcept {
            return range_ == o.range_ && value_ == o.value_;
        }

    private:
        friend class TnumberSequence;
        const_iterator(const Range* range, const Range* end) noexcept
            : range_(range), end_(end), value_(range != end ? range->first : 0) {}
        const Range* range_ = nullptr;
        const Range* end_ = nullptr;
        int value_ = 0;
    };

    /// The empty sequence.
    TnumberSequence() = default;

    /// Reads text of the form "a", "a-b" or "a-bxs" items separated by commas, spaces allowed
    /// around every item and sign; empty or blank text is the empty sequence. On success the
    /// sequence is replaced; on failure it is left as it was and the error names the text
    /// and the 1-based column, for example
    /// "Number sequence \"1-\": expected a number at column 3" (SyntaxError),
    /// "Number sequence \"1-9x0\": step must be at least 1 at column 5" (StepError),
    /// "Number sequence \"99999999999\": number out of range at column 1" (RangeError).
    /// A null text is an empty one.
    qvUtil::Error setFromText(const char* text);
    /// The text form: items joined by "," with no spaces, "a" for a single number, "a-b" for
    /// step 1 and "a-bxs" otherwise. setFromText reads it back to an equal sequence.
    qvString::CString text() const;

    /// Appends the numbers first, first ± step, ... towards last (the last one is the final
    /// whole step that does not pass it). A step below 1 returns a StepError and changes
    /// nothing. Amortised O(1).
    qvUtil::Error append(int first, int last, int step = 1);
    /// Appends one number. Amortised O(1).
    void append(int n) { ranges_.push_back(Range{n, n, 1}); }
    /// Removes every number.
    void clear() noexcept { ranges_.clear(); }

    /// 1 when n is one of the numbers. O(number of ranges).
    int contains(int n) const noexcept;
    /// How many numbers there are, repeats counted. O(number of ranges).
    std::int64_t count() const noexcept;
    /// 1 when there are no numbers.
    int isEmpty() const noexcept { return ranges_.empty(); }
    /// The ranges, in order.
    const std::vector<Range>& ranges() const noexcept { return ranges_; }

    /// The numbers in order.
    const_iterator begin() const noexcept {
        return const_iterator(ranges_.data(), ranges_.data() + ranges_.size());
    }
    /// Past the last number.
    const_iterator end() const noexcept {
        const Range* e = ranges_.data() + ranges_.size();
        return const_iterator(e, e);
    }

    /// 1 when both hold the same ranges (so "1-3" and "1,2,3" differ, though they list the
    /// same numbers).
    int operator==(const TnumberSequence& s) const noexcept { return ranges_ == s.ranges_; }
    /// The negation of ==.
    int operator!=(const TnumberSequence& s) const noexcept { return !(*this == s); }

private:
    std::vector<Range> ranges_;
};

#endif
