// SPDX-License-Identifier: MIT
// The faces of the groups as triangles, and what they show: states, moved points and values.

const COORDINATE_NAMES = ["x", "y", "z"];

class Surface {
  constructor(number) {
    this.number = number;
    this.group = page.groups[number];
    this.points = null; // x, y, z of each point, from the page's origin
    this.shownPoints = -1; // the array that they come from
    this.shown = null; // the values as { base, values, onNodes }; null if there are none
    this.shownValues = null; // the result, component and state that they belong to
  }

  // Cuts each face into a fan of triangles. Of each corner of a triangle it keeps the point; of each triangle its face
  // and which of its sides are sides of the face, bit i for the side opposite corner i.
  async load() {
    const [sizes, corners, cells] = await Promise.all(
      ["sizes", "corners", "cells"].map((key) => block(this.group[key])),
    );
    this.cells = cells;
    this.triangleCount = corners.length - 2 * sizes.length;
    this.corners = new Uint32Array(3 * this.triangleCount);
    this.faceOf = new Uint32Array(this.triangleCount);
    this.sides = new Uint8Array(3 * this.triangleCount);
    let triangle = 0;
    for (let face = 0, first = 0; face < sizes.length; first += sizes[face++]) {
      for (let k = 1; k + 1 < sizes[face]; ++k, ++triangle) {
        this.corners[3 * triangle] = corners[first];
        this.corners[3 * triangle + 1] = corners[first + k];
        this.corners[3 * triangle + 2] = corners[first + k + 1];
        this.faceOf[triangle] = face;
        this.sides.fill(1 + (k + 2 === sizes[face] ? 2 : 0) + (k === 1 ? 4 : 0), 3 * triangle, 3 * triangle + 3);
      }
    }
  }

  // The points in a state, or null if the surface has them already.
  async pointsOf(state) {
    const moved = state < 0 ? null : page.moved[state][this.number];
    const number = moved === null ? this.group.coordinates : moved;
    if (number === this.shownPoints) return null;
    const { values, base } = await block(number);
    const count = values.length / 3;
    const points = new Float32Array(values.length);
    for (let i = 0; i < count; ++i) {
      for (let k = 0; k < 3; ++k) points[3 * i + k] = values[k * count + i] + base[k];
    }
    return { number, points };
  }

  setPoints({ number, points }) {
    this.points = points;
    this.box = boxOfPoints(points);
    this.shownPoints = number;
  }

  // Positions of the corners of all triangles.
  cornerPositions() {
    const positions = new Float32Array(9 * this.triangleCount);
    for (let i = 0; i < this.corners.length; ++i) {
      const point = 3 * this.corners[i];
      positions[3 * i] = this.points[point];
      positions[3 * i + 1] = this.points[point + 1];
      positions[3 * i + 2] = this.points[point + 2];
    }
    return positions;
  }

  // The values of the items in a state, or null if the surface has them already.
  async valuesOf(result, component, state) {
    const key = `${result} ${component} ${state}`;
    if (key === this.shownValues) return null;
    const number = result < 0 || state < 0 ? null : page.values[state][result][this.number];
    if (number === null) return { key, values: null };
    return { key, values: { ...componentOf(await block(number), component), onNodes: page.results[result].onNodes } };
  }

  setValues({ key, values }) {
    this.shown = values;
    this.shownValues = key;
  }

  // Values of the corners. Each corner of a triangle with a value that is not ordinary is undefined, since there is
  // nothing to go over to.
  cornerValues() {
    const { values, onNodes } = this.shown;
    const result = new Float32Array(this.corners.length);
    for (let triangle = 0; triangle < this.triangleCount; ++triangle) {
      const first = 3 * triangle;
      let ordinary = true;
      for (let k = 0; k < 3; ++k) {
        const value = values[onNodes ? this.corners[first + k] : this.faceOf[triangle]];
        result[first + k] = value;
        ordinary = ordinary && isOrdinary(value);
      }
      if (!ordinary) result.fill(UNDEFINED, first, first + 3);
    }
    return result;
  }

  corner(triangle, k) {
    const point = 3 * this.corners[3 * triangle + k];
    return [this.points[point], this.points[point + 1], this.points[point + 2]];
  }

  // The value at a point of a triangle, given by the weights of its corners.
  valueAt(triangle, weights) {
    if (!this.shown) return null;
    const { base, values, onNodes } = this.shown;
    if (!onNodes) {
      const value = values[this.faceOf[triangle]];
      return value === UNDEFINED ? UNDEFINED : base + value;
    }
    const corners = [0, 1, 2].map((k) => values[this.corners[3 * triangle + k]]);
    if (!corners.every(isOrdinary)) return corners.find((value) => !isOrdinary(value));
    return base + corners.reduce((sum, value, k) => sum + value * weights[k], 0);
  }
}

// The box of points, as [lower, upper].
function boxOfPoints(points) {
  const lower = [Infinity, Infinity, Infinity];
  const upper = [-Infinity, -Infinity, -Infinity];
  for (let i = 0; i < points.length; ++i) {
    const k = i % 3;
    if (points[i] < lower[k]) lower[k] = points[i];
    if (points[i] > upper[k]) upper[k] = points[i];
  }
  return [lower, upper];
}

// The box of some surfaces; a unit cube if they have no points.
function boxOf(surfaces) {
  const boxes = surfaces.map((surface) => surface.box).filter(([lower, upper]) => lower[0] <= upper[0]);
  const box = boxOfPoints(boxes.flat(2));
  return box[0][0] <= box[1][0] ? box : UNIT_BOX;
}
