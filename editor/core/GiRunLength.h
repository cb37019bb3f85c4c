#pragma once

// The byte stream that the undo list keeps of a slice of labels.
//
// A stream is a sequence of packets and a closing 0 byte. A control byte of 1 to 127 and one byte:
// a run of that many. A control byte of 129 to 255 and (control & 127) bytes: these bytes as they
// are. A packet starts a run if at least two equal bytes are ahead; within literals only three
// equal bytes start one, since leaving and entering literals costs two bytes. No packet carries
// more than 127 bytes. The length of the data is not stored: the reader must know it.

/// Encodes `size` bytes into a new `malloc`ed buffer of exactly the returned length.
/// throws McMemoryException
long giRunLengthEncode(const unsigned char* source, long size, unsigned char*& stream);

/// Decodes a stream; `target` must have room for all that was encoded.
///
/// room  bytes of `target` that may be written at will, because the stream fills them all: decoding
///       is faster then. 0: nothing is written but what is decoded.
void giRunLengthDecode(unsigned char* target, const unsigned char* stream, long room = 0);
