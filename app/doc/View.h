#pragma once
// A view of a document: anything that shows a document registers with it
// and learns of every change through OnUpdate, and through nothing else.

class CObject;
class CTavixDoc;

class CView {
  public:
    virtual ~CView() = default;
    // `sender` is the view that caused the change (it may skip the
    // update), or null; `hint` says what changed, or is null for "all".
    virtual void OnUpdate(CView* sender, long lHint, CObject* hint) = 0;
};
