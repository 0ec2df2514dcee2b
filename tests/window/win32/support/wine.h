// What the tests ask of wine, where it is what runs them; a Windows of Microsoft's is left as it is.
#pragma once

namespace test {

/// Has this program's windows drawn into nothing, which spares tests that only move them most of their time.
/// To be called before the library that draws is loaded. True.
bool leaveDrawingOutUnderWine();

/// Has the fonts that skins and views name replaced by what is there. To be called before anything is drawn.
/// True.
bool nameFontsUnderWine();

} // namespace test
