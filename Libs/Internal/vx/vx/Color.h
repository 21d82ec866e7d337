#pragma once

#include <cstdint>

#include "vx/Api.h"
#include "vx/StringList.h"

struct vxHSVColor;

/// What the color types have in common: nothing yet.
struct vxColor {};

/// A color by its red, green and blue parts.
///
/// Parts have 16 bits, full scale 65535; operations take 8-bit parts, of which v stands for v * 257.
///
/// Threads:  one at a time.
struct VX_EXPORT vxRGBColor : vxColor {
    /// Black.
    vxRGBColor() = default;
    /// As SetRGB().
    vxRGBColor(uint8_t aRed, uint8_t aGreen, uint8_t aBlue) { SetRGB(aRed, aGreen, aBlue); }
    /// Reads three items (red, green, blue): numbers above 255 count as 255, and an item that is
    /// missing or no number as 0.
    explicit vxRGBColor(const vxCSVStringList& aList);

    /// Sets all three 8-bit parts.
    void SetRGB(uint8_t aRed, uint8_t aGreen, uint8_t aBlue);
    void SetRed(uint8_t aRed);      ///< Sets an 8-bit part.
    void SetGreen(uint8_t aGreen);  ///< Sets an 8-bit part.
    void SetBlue(uint8_t aBlue);    ///< Sets an 8-bit part.

    /// Returns the three 8-bit parts, as the constructor reads them.
    vxCSVStringList ToCSVString() const;

    /// Converts to hue, saturation and value, rounding to nearest; greys have no hue.
    ///
    /// A hue less than half a hundredth of a degree below the full circle becomes 36000, which means
    /// the same as 0. Colors of 8-bit parts never come that close.
    vxHSVColor ToHSV() const;

    uint16_t mRed = 0;    ///< full scale 65535
    uint16_t mGreen = 0;  ///< full scale 65535
    uint16_t mBlue = 0;   ///< full scale 65535
};

/// The hue of a color that has none, such as a grey.
constexpr uint16_t kvxHSVColor_UndefinedHue = 65535;

/// A color by its hue, saturation and value.
///
/// The hue is in hundredths of a degree, 0 to 35999 around the circle from red over green and blue,
/// or undefined. Saturation and value have 16 bits, full scale 65535; operations take whole degrees
/// and 8-bit parts, of which v stands for v * 257.
///
/// Threads:  one at a time.
struct VX_EXPORT vxHSVColor : vxColor {
    /// Black.
    vxHSVColor() = default;
    /// Degrees are not brought into the circle here: 0 to 359 are meant.
    vxHSVColor(uint16_t aHue, uint8_t aSaturation, uint8_t aValue) {
        SetHSV(aHue, aSaturation, aValue);
    }
    /// Reads three items (hue, saturation, value): the hue in degrees, brought into the circle, and
    /// the others as vxRGBColor does.
    explicit vxHSVColor(const vxCSVStringList& aList);

    /// Sets whole degrees and the two 8-bit parts.
    void SetHSV(uint16_t aHue, uint8_t aSaturation, uint8_t aValue);
    void SetHue(uint16_t aHue);               ///< Sets whole degrees.
    void SetSaturation(uint8_t aSaturation);  ///< Sets an 8-bit part.
    void SetValue(uint8_t aValue);            ///< Sets an 8-bit part.

    /// Returns whole degrees, rounded down, and the two 8-bit parts, as the constructor reads them.
    ///
    /// An undefined hue is written as 655 and reads back as a hue of 295 degrees, which shows only
    /// where the saturation is changed later.
    vxCSVStringList ToCSVString() const;

    /// Converts to red, green and blue, rounding to nearest; an undefined hue counts as 0.
    vxRGBColor ToRGB() const;

    uint16_t mHue = 0;         ///< hundredths of a degree, or kvxHSVColor_UndefinedHue
    uint16_t mSaturation = 0;  ///< full scale 65535
    uint16_t mValue = 0;       ///< full scale 65535
};
