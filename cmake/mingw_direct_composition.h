// The one interface of DirectComposition that the toolkit names and mingw-w64's dcomp.h does not declare.
// Read before every source of the toolkit; identity and layout are Windows' own. Windows' compiler puts
// overloads of one name into the table of functions last first, so here they stand in that order.
#pragma once

#ifdef __cplusplus
#include <d2d1_1.h>
#include <dcomp.h>

class IDCompositionVisual3 : public IDCompositionVisualDebug {
  public:
    virtual HRESULT STDMETHODCALLTYPE SetDepthMode(DCOMPOSITION_DEPTH_MODE mode) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOffsetZ(IDCompositionAnimation* animation) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOffsetZ(float offset) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOpacity(IDCompositionAnimation* animation) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOpacity(float opacity) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTransform(IDCompositionTransform3D* transform) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTransform(const D2D_MATRIX_4X4_F& matrix) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetVisible(BOOL isVisible) = 0;
};
__CRT_UUID_DECL(IDCompositionVisual3, 0x2775f462, 0xb6c1, 0x4015, 0xb0, 0xbe, 0xb3, 0xe7, 0xd6, 0xa4, 0x97,
                0x6d)
#endif
