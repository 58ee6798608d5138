'use strict';

const LEAST = 3;  // pixels

// The widths of parts by the rule of the help text: the larger of 3 pixels and the share; what small ones gain
// is taken from the others in proportion.
function expectedWidths(sizes, width) {
  const small = sizes.map(() => false);
  for (;;) {
    const rest = width - LEAST * small.filter(Boolean).length;
    const length = sizes.reduce((sum, size, index) => sum + (small[index] ? 0 : size), 0);
    const share = (index) => sizes[index] / length * rest;
    const next = sizes.findIndex((_, index) => !small[index] && share(index) < LEAST);
    if (next < 0) {
      return sizes.map((_, index) => small[index] ? LEAST : share(index));
    }
    small[next] = true;
  }
}

module.exports = {expectedWidths};
