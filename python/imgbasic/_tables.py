"""What the package knows of a filter and of an option."""

import operator
from typing import NamedTuple


class Option(NamedTuple):
    field: str  # in the filter's object
    text: str
    least: int
    most: int
    initial: int | None  # None: nothing unless given
    opaque: int  # what it is at first for a picture without translucent pixels
    words: dict  # of a choice, word to meaning, in the order of the values

    @property
    def is_switch(self):
        return not self.words and (self.least, self.most) == (0, 1)

    def shown(self, number):
        """The parameter's value for a number of the object's field."""
        if self.words:
            return list(self.words)[number]
        return bool(number) if self.is_switch else number

    def default(self):
        """What the parameter is unless given; None where that depends on the picture."""
        return self.shown(self.initial) if self.initial == self.opaque else None

    def range_text(self):
        if self.words:
            return "one of " + ", ".join(map(repr, self.words))
        return "True or False" if self.is_switch else f"{self.least} to {self.most}"

    def stored(self, name, value):
        """The number for the object's field."""
        if self.words:
            number = list(self.words).index(value) if value in list(self.words) else -1
        else:
            try:
                number = operator.index(value)
            except TypeError:
                raise TypeError(f"{name} must be {self.range_text()}, not {value!r}") from None
        if not self.least <= number <= self.most:
            raise ValueError(f"{name} must be {self.range_text()}, not {value!r}")
        return number


class Filter(NamedTuple):
    text: str
    changes_size: bool
    options: dict  # parameter to Option
