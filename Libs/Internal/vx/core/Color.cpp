// Conversions run in double precision on parts from 0 to 1, and round once at the end.

#include "vx/Color.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kvxColor_FullScale = 65535.0;
constexpr uint16_t kvxColor_HueCircle = 36000;  // hundredths of a degree
constexpr uint16_t kvxColor_HueSector = 6000;

uint16_t vxScaled(uint32_t aPart) {
    return static_cast<uint16_t>(std::min<uint32_t>(aPart, 255) * 257);
}

uint16_t vxRounded(double aPart) {
    return static_cast<uint16_t>(std::floor(aPart + 0.5));
}

uint16_t vxPartAt(const vxCSVStringList& aList, size_t anIndex) {
    return vxScaled(aList.GetAtUInt32(anIndex, 0));
}

vxCSVStringList vxListOf(unsigned aFirst, unsigned aSecond, unsigned aThird) {
    vxCSVStringList theList('\\');
    theList.AddUInt32(aFirst);
    theList.AddUInt32(aSecond);
    theList.AddUInt32(aThird);
    return theList;
}

// The hue in sixths of the circle, from -1 to 5; not for greys.
double vxSixths(double aRed, double aGreen, double aBlue, double aMax, double aDelta) {
    if (aRed == aMax) {
        return (aGreen - aBlue) / aDelta;
    }
    if (aGreen == aMax) {
        return 2 + (aBlue - aRed) / aDelta;
    }
    return 4 + (aRed - aGreen) / aDelta;
}

}  // namespace

vxRGBColor::vxRGBColor(const vxCSVStringList& aList)
    : mRed(vxPartAt(aList, 0)), mGreen(vxPartAt(aList, 1)), mBlue(vxPartAt(aList, 2)) {}

void vxRGBColor::SetRGB(uint8_t aRed, uint8_t aGreen, uint8_t aBlue) {
    SetRed(aRed);
    SetGreen(aGreen);
    SetBlue(aBlue);
}

void vxRGBColor::SetRed(uint8_t aRed) {
    mRed = vxScaled(aRed);
}

void vxRGBColor::SetGreen(uint8_t aGreen) {
    mGreen = vxScaled(aGreen);
}

void vxRGBColor::SetBlue(uint8_t aBlue) {
    mBlue = vxScaled(aBlue);
}

vxCSVStringList vxRGBColor::ToCSVString() const {
    return vxListOf(mRed / 256u, mGreen / 256u, mBlue / 256u);
}

vxHSVColor vxRGBColor::ToHSV() const {
    const double theRed = mRed / kvxColor_FullScale;
    const double theGreen = mGreen / kvxColor_FullScale;
    const double theBlue = mBlue / kvxColor_FullScale;
    const double theMax = std::max({theRed, theGreen, theBlue});
    const double theDelta = theMax - std::min({theRed, theGreen, theBlue});

    vxHSVColor theColor;
    theColor.mValue = vxRounded(theMax * kvxColor_FullScale);
    if (theDelta == 0) {
        theColor.mHue = kvxHSVColor_UndefinedHue;
        return theColor;
    }
    const double theDegrees = 60 * vxSixths(theRed, theGreen, theBlue, theMax, theDelta);
    theColor.mHue = vxRounded((theDegrees < 0 ? theDegrees + 360 : theDegrees) * 100);
    theColor.mSaturation = vxRounded(theDelta / theMax * kvxColor_FullScale);
    return theColor;
}

vxHSVColor::vxHSVColor(const vxCSVStringList& aList)
    : mHue(static_cast<uint16_t>(aList.GetAtUInt32(0, 0) % 360 * 100)),
      mSaturation(vxPartAt(aList, 1)),
      mValue(vxPartAt(aList, 2)) {}

void vxHSVColor::SetHSV(uint16_t aHue, uint8_t aSaturation, uint8_t aValue) {
    SetHue(aHue);
    SetSaturation(aSaturation);
    SetValue(aValue);
}

void vxHSVColor::SetHue(uint16_t aHue) {
    mHue = static_cast<uint16_t>(aHue * 100u);
}

void vxHSVColor::SetSaturation(uint8_t aSaturation) {
    mSaturation = vxScaled(aSaturation);
}

void vxHSVColor::SetValue(uint8_t aValue) {
    mValue = vxScaled(aValue);
}

vxCSVStringList vxHSVColor::ToCSVString() const {
    return vxListOf(mHue / 100u, mSaturation / 256u, mValue / 256u);
}

vxRGBColor vxHSVColor::ToRGB() const {
    const unsigned theHue = mHue == kvxHSVColor_UndefinedHue ? 0u : mHue % kvxColor_HueCircle;
    const double theFraction = theHue % kvxColor_HueSector / double(kvxColor_HueSector);
    const double theSaturation = mSaturation / kvxColor_FullScale;
    // Within a sector one part stays at the top, one at the bottom, and one rises or falls.
    const uint16_t theBottom = vxRounded(mValue * (1 - theSaturation));
    const uint16_t theFalling = vxRounded(mValue * (1 - theSaturation * theFraction));
    const uint16_t theRising = vxRounded(mValue * (1 - theSaturation * (1 - theFraction)));
    const uint16_t theSectors[6][3] = {
        {mValue, theRising, theBottom}, {theFalling, mValue, theBottom},
        {theBottom, mValue, theRising}, {theBottom, theFalling, mValue},
        {theRising, theBottom, mValue}, {mValue, theBottom, theFalling},
    };
    const uint16_t* theParts = theSectors[theHue / kvxColor_HueSector];
    vxRGBColor theColor;
    theColor.mRed = theParts[0];
    theColor.mGreen = theParts[1];
    theColor.mBlue = theParts[2];
    return theColor;
}
