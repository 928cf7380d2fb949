#pragma once

// One 16-bit unit of text. Text inside the system is UTF-16; UTF-8 stands only at the border to the
// operating system.
using OQChar = char16_t;
