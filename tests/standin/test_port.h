// A port for a test of drawing.
#pragma once

#include "standin/drawing/port.h"
#include "tests/standin/pictures.h"

namespace support
{

// A port as long as it lives, and the current one meanwhile.
class TestPort
{
public:
    TestPort(SInt16 width, SInt16 height) : TestPort(Rect{0, 0, height, width}) {}
    explicit TestPort(const Rect &bounds) : port_(standin::newPort(bounds, {bounds.top, bounds.left}))
    {
        GetPort(&earlier_);
        SetPort(port_);
    }
    ~TestPort()
    {
        SetPort(earlier_);
        DisposePort(port_);
    }
    TestPort(const TestPort &) = delete;
    TestPort &operator=(const TestPort &) = delete;

    operator GrafPtr() const { return port_; }
    OpaqueGrafPtr *operator->() const { return port_; }

private:
    GrafPtr earlier_ = nullptr, port_ = nullptr;
};

}   // namespace support
