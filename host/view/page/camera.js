// SPDX-License-Identifier: MIT
// Where the view is seen from. z stays up; angles are in degrees.

const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
const minus = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
const plusScaled = (a, b, factor) => [a[0] + b[0] * factor, a[1] + b[1] * factor, a[2] + b[2] * factor];
const cross = (a, b) => [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];

const cornersOf = (box) => [0, 1, 2, 3, 4, 5, 6, 7].map((i) => [0, 1, 2].map((k) => box[(i >> k) & 1][k]));

const HALF_ANGLE = 15; // of the height in perspective

const UNIT_BOX = [
  [0, 0, 0],
  [1, 1, 1],
];

// Azimuth and elevation from which a case that is flat along x, y or z is seen.
const FLAT_VIEWS = [
  [0, 0],
  [-90, 0],
  [-90, 90],
];

const STANDARD_VIEWS = [
  ["Front", -90, 0],
  ["Back", 90, 0],
  ["Left", 180, 0],
  ["Right", 0, 0],
  ["Top", -90, 90],
  ["Bottom", -90, -90],
];

const camera = {
  azimuth: -60,
  elevation: 28,
  center: [0, 0, 0],
  height: 1,
  size: 1,
  perspective: true,
  box: UNIT_BOX, // of all that is drawn

  // Shows a whole box: a flat one from its front, any other from above and the side.
  home(box) {
    const size = minus(box[1], box[0]);
    const thin = size.indexOf(Math.min(...size));
    const isFlat = size[thin] < 0.15 * Math.min(...size.filter((_, k) => k !== thin));
    this.reset(box, ...(isFlat ? FLAT_VIEWS[thin] : [-60, 28]));
  },

  reset(box, azimuth, elevation) {
    this.azimuth = azimuth;
    this.elevation = elevation;
    this.center = box[0].map((low, k) => (low + box[1][k]) / 2);
    this.size = Math.hypot(...minus(box[1], box[0])) || 1;
    const { right, up, toward } = this.axes();
    const aspect = Math.max((this.aspect || 1) * 0.86, 0.3); // beside the legend
    // In perspective, what is nearer looks larger.
    const slope = this.perspective ? Math.tan((HALF_ANGLE * Math.PI) / 180) : 0;
    const heights = cornersOf(box).map((corner) => {
      const place = minus(corner, this.center);
      return (
        2 * (Math.max(Math.abs(dot(up, place)), Math.abs(dot(right, place)) / aspect) + slope * dot(toward, place))
      );
    });
    this.height = 1.1 * Math.max(...heights, this.size * 1e-3);
  },

  axes() {
    const [a, e] = [(this.azimuth * Math.PI) / 180, (this.elevation * Math.PI) / 180];
    const toward = [Math.cos(e) * Math.cos(a), Math.cos(e) * Math.sin(a), Math.sin(e)];
    const right = [-Math.sin(a), Math.cos(a), 0];
    return { right, up: cross(toward, right), toward };
  },

  distance() {
    return this.height / 2 / Math.tan((HALF_ANGLE * Math.PI) / 180);
  },

  // How far from the eye the nearest and the farthest point may be. No more than is needed, because the two sides of a
  // thin case can be told apart only in a narrow range.
  depths(toward) {
    const all = cornersOf(this.box).map((corner) => this.distance() - dot(toward, minus(corner, this.center)));
    const margin = 0.02 * Math.hypot(...minus(this.box[1], this.box[0])) || 1;
    const [near, far] = [Math.min(...all) - margin, Math.max(...all) + margin];
    if (!this.perspective) return [near, far];
    const beyondEye = Math.max(far, margin);
    return [Math.max(near, beyondEye * 2e-4), beyondEye];
  },

  // The matrix from space to the picture, column after column.
  matrix(aspect) {
    this.aspect = aspect;
    const { right, up, toward } = this.axes();
    const distance = this.distance();
    const [near, far] = this.depths(toward);
    const [x, y, z] = [right, up, toward].map((axis) => [...axis, -dot(axis, this.center)]);
    const flat = this.height / 2;
    let rows;
    if (this.perspective) {
      const scale = distance / flat;
      // Depth before the eye is distance - z.
      const a = (far + near) / (far - near);
      const b = (-2 * far * near) / (far - near);
      rows = [
        x.map((v) => (v * scale) / aspect),
        y.map((v) => v * scale),
        z.map((v, k) => -a * v + (k === 3 ? a * distance + b : 0)),
        z.map((v, k) => -v + (k === 3 ? distance : 0)),
      ];
    } else {
      const half = (far - near) / 2;
      rows = [
        x.map((v) => v / flat / aspect),
        y.map((v) => v / flat),
        z.map((v, k) => -v / half + (k === 3 ? (distance - near) / half - 1 : 0)),
        [0, 0, 0, 1],
      ];
    }
    return new Float32Array([0, 1, 2, 3].flatMap((column) => rows.map((row) => row[column])));
  },

  // The ray through a place of the picture, given from -1 to 1 to the right and up.
  ray(px, py, aspect) {
    const { right, up, toward } = this.axes();
    const onPlane = plusScaled(
      plusScaled(this.center, right, (px * aspect * this.height) / 2),
      up,
      (py * this.height) / 2,
    );
    if (!this.perspective)
      return { from: plusScaled(onPlane, toward, 4 * this.size + this.height), along: toward.map((v) => -v) };
    const from = plusScaled(this.center, toward, this.distance());
    return { from, along: minus(onPlane, from) };
  },

  turn(dx, dy) {
    this.azimuth = (this.azimuth - dx) % 360;
    this.elevation = Math.max(-90, Math.min(90, this.elevation + dy));
  },

  // Moves by parts of the picture's height.
  move(dx, dy) {
    const { right, up } = this.axes();
    this.center = plusScaled(plusScaled(this.center, right, -dx * this.height), up, dy * this.height);
  },

  // Zooms by a factor and keeps a place of the picture where it is.
  zoom(factor, px = 0, py = 0, aspect = 1) {
    const height = Math.max(this.size * 1e-4, Math.min(this.size * 50, this.height * factor));
    const change = (this.height - height) / 2;
    const { right, up } = this.axes();
    this.center = plusScaled(plusScaled(this.center, right, px * aspect * change), up, py * change);
    this.height = height;
  },
};

// Where a line meets the plane of a triangle: the weights of the corners and the point. Null if they are parallel.
function meet(ray, a, b, c) {
  const [ab, ac] = [minus(b, a), minus(c, a)];
  const normal = cross(ab, ac);
  const slope = dot(normal, ray.along);
  if (slope === 0) return null;
  const point = plusScaled(ray.from, ray.along, dot(normal, minus(a, ray.from)) / slope);
  const whole = dot(normal, normal);
  const toPoint = minus(point, a);
  const beta = dot(normal, cross(toPoint, ac)) / whole;
  const gamma = dot(normal, cross(ab, toPoint)) / whole;
  return { point, weights: [1 - beta - gamma, beta, gamma] };
}
