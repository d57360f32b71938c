// VK_Filename: a file name with the data type it names, knowing the frame-sequence convention
// of image and animation files (shot.0012 is frame 12 of the sequence "shot"). Filename(out)
// finds the file inside the project (see db_filename.h), trying padded frame numbers, the
// compressed ".Z" form and, for images, the image-name hook Ar_expand_pixname.
#ifndef OBRIX_UTIL_VK_FILENAME_H
#define OBRIX_UTIL_VK_FILENAME_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/util/DS/ds_structures.h"
#include "ObrixBase/util/db_filename.h"

/// A typed file name. Not safe to share between threads (it expands through the project's
/// process-wide settings). Copies are deep.
class OBRIX_API VK_Filename {
public:
    /// The size of every `out` buffer a VK_Filename writes into.
    static constexpr int OUT_BUFFER_SIZE = DB_PATH_BUFFER_SIZE;

    /// An empty name of type PIX_DATA.
    VK_Filename();
    /// Frame -1, pad width 3, then setFilename(name); a null name holds nothing.
    explicit VK_Filename(const char* name, int type = PIX_DATA);
    /// Copies both names, the frame, pad width and type.
    VK_Filename(const VK_Filename& other);
    /// Copies both names, the frame, pad width and type; self-assignment is harmless.
    VK_Filename& operator=(const VK_Filename& other);
    /// Frees both names.
    ~VK_Filename();

    /// Parses name: when its last extension is a number (after a '.' that is neither first
    /// nor before the last separator), or a number followed by ".Z", the name is frame `n` of
    /// the sequence named by the text before that dot; the full name is then dropped (null)
    /// and the base name kept. The pad width grows to the longest run of zeros after such a
    /// dot. Setting the name already held as full name changes nothing. A null name drops
    /// both names. Returns 1.
    long setFilename(const char* name);
    /// Expands the name into out (OUT_BUFFER_SIZE bytes) and returns 1 when a file exists
    /// there, trying in turn the expanded name, name + ".Z" and, for PIX_DATA and MASK_DATA,
    /// Ar_expand_pixname(name, 1) (whose C-heap result is freed here). A sequence is tried
    /// with its frame zero-padded to 1, 2, ... pad width + 1 digits; when none exists, out
    /// holds the expanded base name. Returns 0 when nothing exists, no name is held or out
    /// is null. A path ending in a separator never counts as found: an empty name, or one
    /// too long to join to its directory, expands to the directory alone (see
    /// expand_filename) and gives 0.
    long Filename(char* out) const;
    /// The full name; null for a sequence or when nothing is held. Owned by this object.
    char* Filename() const { return fullName_; }
    /// The base name of a sequence, else the full name. Owned by this object.
    char* BaseFilename() const { return baseName_ ? baseName_ : fullName_; }
    /// The frame, -1 until known.
    int Frame() const { return frame_; }
    /// 1 when the name is a frame of a sequence.
    long Sequence() const { return sequence_; }
    /// Stores f and marks the name a sequence when f differs from the frame; returns the old
    /// frame.
    int setFrame(int f);
    /// The data type code.
    int Type() const { return type_; }
    /// 0 when no name is held, else Filename(scratch buffer).
    long CheckStatus();
    /// Always sets *first to -1 and *last to 2147483647 and returns 1: no scan of the disk
    /// is made, and count is left untouched. Null pointers are skipped.
    long getFrameRange(int* first, int* last, int* count);
    /// Collects no frames; returns 1.
    long getFrameRange(DS_Structure** frames);
    /// Prints the name, base name, expansion, sequence flag, type name and frame to standard
    /// output. The expansion line reads "(none)" when a file exists, and shows the tried path
    /// when none does.
    void debug() const;

    /// The printed name of a data type code ("PIX_DATA"), "UNKNOWN" for codes without one.
    static const char* typeName(int type);

private:
    bool tryName(char* out, const char* name) const;
    void freeNames();

    char* fullName_ = nullptr; // C heap
    char* baseName_ = nullptr; // accounted allocator (MA_malloc)
    int sequence_ = 0;
    int frame_ = -1;
    int type_ = PIX_DATA;
    int padWidth_ = 3;
};

#endif
