// FontProperties: the font of a label or an annotation (family, size in points, weight,
// style, pitch) as a small value class. Every setter keeps the value inside what a font
// dialog can show, so a font read from a file or scaled by code always has a valid form;
// toText() and fromText() store it as one line of text that parses back to an equal value.
//
//     FontProperties label("Segoe UI", 13.2, FontProperties::BoldWeight);
//     label.size();      // 14: the nearest size of the standard list
//     label.toText();    // "family=Segoe UI;size=14;weight=700;style=normal;pitch=default"
#ifndef OBRIX_TEXT_FONTPROPERTIES_H
#define OBRIX_TEXT_FONTPROPERTIES_H

#include <compare>
#include <span>
#include <string_view>

#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"

namespace qvObrixBase {

/// A font choice as the application stores it: family, size in points (a standard size),
/// weight, style and pitch, each kept within its allowed values by the setters, with a
/// one-line text form for preference files.
class OBRIX_API FontProperties {
public:
    /// Upright, italic or slanted (oblique) faces.
    enum class Style : int { Normal = 0, Italic = 1, Oblique = 2 };
    /// Default lets the system choose; Fixed is monospaced.
    enum class Pitch : int { Default = 0, Fixed = 1, Variable = 2 };

    // Enumerators rather than static data members: a static member of an exported class is
    // imported from the DLL on Windows, where an inline constant has nothing to import.
    enum : int {
        /// Weights are hundreds from 100 (thin) to 900 (black), as font files number them.
        MinWeight = 100,
        NormalWeight = 400,
        BoldWeight = 700,
        MaxWeight = 900,
        DefaultSize = 10,
        /// The error code of fromText.
        ParseError = 1,
    };

    /// The sizes, in points, that the Windows font dialog offers for scalable fonts. The
    /// application's users pick fonts in that dialog, so a font that keeps to its list can
    /// always be shown there as selected.
    static std::span<const int> standardSizes() noexcept;

    /// Family "" (the system's default face), DefaultSize, NormalWeight, Normal, Default.
    FontProperties() = default;
    /// A font with each value kept in range as by its setter.
    FontProperties(qvString::CString family, double size, int weight = NormalWeight,
                   Style style = Style::Normal, Pitch pitch = Pitch::Default);

    /// The family name; "" means the system's default face.
    const qvString::CString& family() const noexcept { return family_; }
    /// Any text; "" means the system's default face.
    void setFamily(qvString::CString family) { family_ = std::move(family); }

    /// The size in points, always one of standardSizes().
    int size() const noexcept { return size_; }
    /// Stores snapSize(points).
    void setSize(double points) noexcept { size_ = snapSize(points); }
    /// The standard size nearest to `points` (the larger one of two equally near). Sizes below
    /// the list, zero, negative sizes and NaN give the smallest (8); sizes above it, infinity
    /// included, the largest (72).
    static int snapSize(double points) noexcept;

    /// The weight, a hundred from 100 to 900.
    int weight() const noexcept { return weight_; }
    /// Stores clampWeight(weight).
    void setWeight(int weight) noexcept { weight_ = clampWeight(weight); }
    /// `weight` rounded to the nearest hundred (halves up) and kept within 100..900.
    static int clampWeight(int weight) noexcept;
    /// True from weight 600 (semi-bold) up.
    bool isBold() const noexcept { return weight_ >= 600; }

    /// The style, always one of the enumerators.
    Style style() const noexcept { return style_; }
    /// A value outside the enumeration (from a cast) becomes the nearest one: below Normal
    /// gives Normal, above Oblique gives Oblique.
    void setStyle(Style style) noexcept;

    /// The pitch, always one of the enumerators.
    Pitch pitch() const noexcept { return pitch_; }
    /// As setStyle: out-of-range values become Default or Variable.
    void setPitch(Pitch pitch) noexcept;

    /// Equal when every value is; family names compare without regard to ASCII case, as the
    /// system matches them ("arial" is "Arial"). Ordered by family, size, weight, style, pitch.
    friend OBRIX_API bool operator==(const FontProperties& a, const FontProperties& b) noexcept;
    /// Orders by family (ASCII case ignored), size, weight, style and pitch, as == compares.
    friend OBRIX_API std::strong_ordering operator<=>(const FontProperties& a,
                                                      const FontProperties& b) noexcept;

    /// One line: "family=<name>;size=<n>;weight=<n>;style=<normal|italic|oblique>;
    /// pitch=<default|fixed|variable>". In the name, '\' and ';' are written as "\\" and "\;";
    /// line breaks as "\n".
    qvString::CString toText() const;
    /// Reads the form of toText into `font`. Fields may come in any order and may be left out
    /// (they keep the default); sizes and weights are snapped and clamped as by the setters.
    /// An unknown or repeated field, a field without '=', a number that does not parse or a
    /// style or pitch that is not one of the names gives ParseError with a message naming the
    /// field, and leaves `font` unchanged.
    static qvUtil::Error fromText(std::string_view text, FontProperties& font);

private:
    qvString::CString family_;
    int size_ = DefaultSize;
    int weight_ = NormalWeight;
    Style style_ = Style::Normal;
    Pitch pitch_ = Pitch::Default;
};

} // namespace qvObrixBase

#endif
