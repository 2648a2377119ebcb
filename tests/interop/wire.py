"""Requests and responses as bytes, written from the OMG standards alone: DDS-RTPS 2.3 (10, serialized payload) and XTypes 1.2
(7.4, XCDR version 1). Shares nothing with the encoding of the shell, so that a byte that the shell's two ends would both
misread shows here."""

import struct

MUST_UNDERSTAND, LIST_END = 0x4000, 0x3F02
PARAMETER_LIST_LITTLE_ENDIAN = b"\0\3\0\0"  # CDR is 0 and 1


def padded(data):
    return data + bytes(-len(data) % 4)


def values(*members, order="<"):
    """Booleans, integers, texts and lists, one after the other."""
    data = b""
    for member in members:
        if isinstance(member, bool):
            data += bytes([member])
        elif isinstance(member, int):
            data = padded(data) + struct.pack(order + "i", member)
        elif isinstance(member, list):
            data = padded(data) + values(len(member), *member, order=order)
        else:
            text = member.encode("latin-1") + b"\0"
            data = padded(data) + struct.pack(order + "I", len(text)) + text
    return data


def parameters(*members):
    """A parameter list: values by their positions as member ids; None for a member that is not there."""
    data = b""
    for number, value in enumerate(members):
        if value is not None:
            data = padded(data) + struct.pack("<HH", number, len(value)) + value
    return padded(data) + struct.pack("<HH", LIST_END | MUST_UNDERSTAND, 0)


def request(identity, target, kind, branch, *members):
    """`branch` is the id of the union's member that the kind selects."""
    command = parameters(values(kind), *[None] * (branch - 1), values(*members))
    return PARAMETER_LIST_LITTLE_ENDIAN + parameters(values(*identity), values(target), command)


def identity_of(payload):
    """Host, application and invocation of a request: the first member's value."""
    return list(struct.unpack_from("<iii", payload, 8))


def response(identity, kind, message, is_final, order):
    """The options, after the encapsulation's identifier, count the padding."""
    data = values(*identity, kind, message, is_final, order=order)
    return bytes([0, order == "<", 0, -len(data) % 4]) + padded(data)
