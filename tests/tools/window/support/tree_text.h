// A skin's tree on paper, to compare what two readers have made of one text.
#pragma once

#include "skin_language/xml_reader.h"
#include "tools/skin_check/skin_source.h"

#include <string>

std::string treeText(const tools::window::SourceElement& root);

/// Without the root's siblings.
std::string treeText(const XmlNode& root);
