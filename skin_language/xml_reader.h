// The reader of skin files. It turns one text into a tree of elements and knows a deliberately narrow dialect
// of XML: elements, double-quoted attributes and plain text, but no prolog, comments, entities or CDATA. What
// the names mean is none of its business.
//
// The dialect in short:
//
//     element   = ws "<" letter {letter | digit | "_"} ws {attribute} end
//     attribute = (letter | "_") {letter | digit | "_"} ws "=" ws '"' {any byte but '"'} '"' ws
//     end       = "/" ws ">"                                        an empty element
//               | ">" {text | element} "</" ws name ws ">"          names compared without case
//               | any other byte, left where it is                  the element counts as empty and complete
//     ws        = {tab | line feed | carriage return | space}
//
// An attribute name without "=" is dropped. Of several runs of text between the children of an element the
// last one stands. Strings are plain bytes: no character set is assumed and nothing is decoded.
//
// Any thread may read, also several at once, each its own tree; never the audio thread, since it allocates.
#pragma once

/// One attribute. Duplicate names are all kept, in the order of the file: the first match counts.
struct XmlAttr {
    char* name = nullptr;
    /// The raw bytes between the quotes; null for `a=""`.
    char* value = nullptr;
    XmlAttr* next = nullptr;
};

/// One element. Its strings and attributes and all that hangs on it belong to the tree.
struct XmlNode {
    /// First attribute, in the order of the file.
    XmlAttr* attrs = nullptr;
    /// Next sibling, in the order of the file.
    XmlNode* next = nullptr;
    XmlNode* child = nullptr;
    /// As the opening tag spells it.
    char* name = nullptr;
    /// The last run of text with its trailing white space but not its leading; null when there is none.
    char* text = nullptr;
};

/// Reads the element that starts at `position` of the NUL-terminated `text` and stores it in `*result`. Gives
/// the position just behind it; what follows is not looked at. The text may be released afterwards.
///
/// Gives -1 if the text is not of the dialect, ends too early, nests too deep for any skin, or memory is out.
/// `*result` then holds what was read so far, for `xmlFreeNode`; it is null if the text did not begin with
/// "<" and a letter, and untouched if there was no memory for the element itself. A closing tag with a name
/// of 256 bytes or more ends the process.
int xmlParseNode(const char* text, int position, XmlNode** result);

/// Releases an element, what hangs on it, and the siblings behind it; null is allowed. The records serve
/// later trees, so no node of the tree may be used or freed after this.
void xmlFreeNode(XmlNode* node);

/// The first position at or after `position` that holds no white space, or -1 if the text ends before. A
/// failed position, -1, stays one.
int xmlSkipSpace(int position, const char* text);

/// The root element of a file, or null if the file can't be opened or read, or is not of the dialect.
XmlNode* xmlParseFile(const char* path);

/// A file's bytes with a NUL behind them, for `std::free`; null if it can't be opened or read, or if
/// positions in it would not fit an int.
char* xmlReadFile(const char* path);
