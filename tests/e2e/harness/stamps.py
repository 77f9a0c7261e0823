"""When the program's own writes of single bytes began and returned."""
import collections
import os
import struct

RECORD = struct.Struct("=qqii")
Write = collections.namedtuple("Write", "begun returned descriptor byte")


class WriteStamps:
    def __init__(self, world):
        self._path = os.path.join(world.folder, "stamps")
        library = os.path.join(os.path.abspath(world.build), "tests", "libvorrano_write_stamps.so")
        self.environment = {"LD_PRELOAD": library, "VORRANO_WRITE_STAMPS": self._path}

    def of(self, text):
        """The writes that made up this text, one per byte; seconds of the monotonic clock."""
        with open(self._path, "rb") as file:
            writes = [Write(begun / 1e9, returned / 1e9, descriptor, byte)
                      for begun, returned, descriptor, byte in RECORD.iter_unpack(file.read()) if begun]
        lines = collections.defaultdict(list)
        for write in writes:
            lines[write.descriptor].append(write)
        for line in lines.values():
            place = bytes(write.byte for write in line).find(text)
            if place >= 0:
                return line[place:place + len(text)]
        raise AssertionError("the text was not written byte by byte")

    def of_image(self, image):
        """The writes of a firmware image, and the seconds between the last of each line and the first of the next."""
        sent = image.replace("\n", "").encode()
        writes = self.of(sent)
        ends = [place for place, byte in enumerate(sent) if byte == ord("\r")][:-1]
        return writes, [writes[place + 1].begun - writes[place].returned for place in ends]
