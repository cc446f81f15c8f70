#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/document.h"
#include "host/image_file.h"

namespace imgbasic::host {

// OpenRaster: a zip archive of stack.xml and one PNG a layer. CompositionKind::Additive is
// svg:plus, both normal kinds are svg:src-over and come back as CompositionKind::Normal, the clip
// flag is alpha-preserve, a folder is a nested stack.
//
// A document keeps the file that it was read from open, and every layer and folder knows its
// element there. Writing it starts from that: what the document says no otherwise goes back as it
// came, unknown attributes, nodes and files of the archive included.

class ZipReader;

/// Reads a file; `name` names it in errors and notes. A layer's pixels outside the image are left
/// in the file. What is shown otherwise than the file means it is told in `notes`. Throws
/// FileError.
Document ReadOpenRaster(ZipReader archive, const std::string& name, Detail detail,
                        std::vector<std::string>& notes);

/// The bytes of an archive of the layers, the picture that they give together at `bitDepth`
/// bits a channel, and a thumbnail. A layer that still has the pixels of its origin goes back as
/// the same file, and so do all others of the document's source; where only a part of a layer was
/// read, the rest stays. New pictures of layers have 8 bits a channel where `bitDepth` has and no
/// pixel needs more. The same document always gives the same bytes. `name` names it in errors.
/// Throws FileError.
std::vector<std::byte> EncodeOpenRaster(const Document& document, int bitDepth,
                                        const std::string& name);

/// The format's name for how a layer or folder is composed, "svg:src-over" for one.
std::string CompositeOperation(const LayerAttributes& member);

/// What a result of running a filter over the document could not keep or would show otherwise
/// than the file means it, one phrase for each; `resizes` is whether the filter changes the size.
std::vector<std::string> LossesOf(const Document& document, bool resizes);

}  // namespace imgbasic::host
