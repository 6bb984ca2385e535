// What a message box shows and what it answers: the platform's numbers, without a window.
#pragma once

#include <cstdint>

constexpr std::uint32_t MB_OK = 0x00;
constexpr std::uint32_t MB_OKCANCEL = 0x01;
constexpr std::uint32_t MB_YESNOCANCEL = 0x03;
constexpr std::uint32_t MB_YESNO = 0x04;
constexpr std::uint32_t MB_ICONHAND = 0x10;
constexpr std::uint32_t MB_ICONEXCLAMATION = 0x30;
constexpr std::uint32_t MB_ICONINFORMATION = 0x40;
constexpr std::uint32_t MB_TYPEMASK = 0x0F; // the bits that say which buttons
constexpr std::uint32_t MB_ICONMASK = 0xF0;

constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;
constexpr int IDYES = 6;
constexpr int IDNO = 7;
