// The root class of the model's and the windows' classes. It gives the virtual destructor and forbids copies,
// and nothing else of it is used.
#pragma once

class CObject {
public:
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    virtual ~CObject() = default;

protected:
    CObject() = default;
};
