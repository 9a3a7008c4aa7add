// Map records of domain classes and their member flags.
#pragma once

// Member flags: the Flags word of a map record, which becomes the flags of the
// value description made from it.
inline constexpr unsigned long MDF_ATTRIB = 0x0;  // no flag: a plain attribute
inline constexpr unsigned long MDF_ID = 0x1;
inline constexpr unsigned long MDF_PRIMARY = 0x2;
inline constexpr unsigned long MDF_FOREIGN = 0x4;  // also implied by a join entity
inline constexpr unsigned long MDF_REQUIRED = 0x8;
inline constexpr unsigned long MDF_UNIQUE = 0x10;
inline constexpr unsigned long MDF_READONLY = 0x20;
inline constexpr unsigned long MDF_OPTIONAL = 0x40;
inline constexpr unsigned long MDF_NOQUOTE = 0x80;  // written into statements without quotes
inline constexpr unsigned long MDF_DOMINANT = 0x100;
inline constexpr unsigned long MDF_ORDINAL = 0x200;
inline constexpr unsigned long MDF_UNUSED = 0x400;  // the description starts as not used
inline constexpr unsigned long MDF_ASSOCIATION = 0x1000;
inline constexpr unsigned long MDF_POINTER = 0x2000;     // the member holds a pointer to the value
inline constexpr unsigned long MDF_REFPOINTER = 0x4000;  // ... to a reference-counted value
inline constexpr unsigned long MDF_NOCASE = 0x10000;
inline constexpr unsigned long MDF_REFONLY = 0x20000;
inline constexpr unsigned long MDF_MAPREF = 0x10000000;  // the record refers to another map
