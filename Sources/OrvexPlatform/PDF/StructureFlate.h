#pragma once

namespace orvex::platform {

/// Makes qpdf inflate within the thread's StructureBudget: a few kilobytes of a hostile file could stand for gigabytes
/// of cross-reference entries. The two other filters that expand data, LZW and run lengths, are switched off; no writer
/// uses them for structure. This holds for the whole process; without a budget inflating works as ever. Any thread, any
/// number of times.
void boundStructureFilters();

} // namespace orvex::platform
