#pragma once
// The common root of the editor's polymorphic objects: bitmaps, images,
// commands, command descriptors and update hints. It carries nothing but a
// virtual destructor, so that a hint or an image can travel as a CObject*
// and be recognised again with dynamic_cast.

class CObject {
  public:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
    virtual ~CObject() = default;
};
