// SPDX-License-Identifier: MIT
// Draws surfaces with WebGL 2. Light and edges come from derivatives in the fragment shader, so a vertex has only its
// position, its value and the sides of its triangle.

const VERTEX_SHADER = `#version 300 es
in vec3 position; in float value; in float sides;
uniform mat4 matrix;
out vec3 place; out float shown; out vec3 corner; flat out int sideBits; flat out uint triangle;
void main() {
  gl_Position = matrix * vec4(position, 1.0);
  place = position; shown = value; sideBits = int(sides);
  int k = gl_VertexID % 3;
  corner = vec3(k == 0, k == 1, k == 2);
  triangle = uint(gl_VertexID / 3);
}`;

const CLIP = `uniform vec4 clip; bool isClipped(vec3 p) { return dot(clip.xyz, p) > clip.w; }`;

const COLOR_SHADER = `#version 300 es
precision highp float; precision highp int;
in vec3 place; in float shown; in vec3 corner; flat in int sideBits;
uniform sampler2D colors; uniform vec2 range; uniform vec3 plain; uniform vec3 missing; uniform vec3 toward;
uniform bool hasValues; uniform float edgeStrength; uniform vec3 edgeColor;
out vec4 color;
${CLIP}
void main() {
  vec3 across = cross(dFdx(place), dFdy(place));
  vec3 w = fwidth(corner);
  if (isClipped(place)) discard;
  vec3 base = plain;
  if (hasValues) {
    float t = range.y > range.x ? (shown - range.x) / (range.y - range.x) : 0.5;
    base = texture(colors, vec2((clamp(t, 0.0, 1.0) * 255.0 + 0.5) / 256.0, 0.5)).rgb;
    // Hatched, because a map may have the grey too.
    if (shown > 1e38) base = missing * (mod(floor(gl_FragCoord.x) + floor(gl_FragCoord.y), 9.0) < 2.0 ? 0.7 : 1.0);
  }
  float facing = abs(dot(across, toward)) / max(length(across), 1e-30);
  vec3 lit = base * (0.76 + 0.24 * facing) * (gl_FrontFacing ? 1.0 : 0.8);
  vec3 sideDistance = corner / max(w, vec3(1e-9));
  float nearest = 1e9;
  if ((sideBits & 1) != 0) nearest = min(nearest, sideDistance.x);
  if ((sideBits & 2) != 0) nearest = min(nearest, sideDistance.y);
  if ((sideBits & 4) != 0) nearest = min(nearest, sideDistance.z);
  color = vec4(mix(lit, edgeColor, edgeStrength * (1.0 - smoothstep(0.4, 1.3, nearest))), 1.0);
}`;

const PICK_SHADER = `#version 300 es
precision highp float; precision highp int;
in vec3 place; flat in uint triangle;
uniform uint surface;
out uvec4 found;
${CLIP}
void main() { if (isClipped(place)) discard; found = uvec4(surface + 1u, triangle, 0u, 0u); }`;

// Coplanar faces: the more special group is in front, and of two alike the smaller one.
const LAYERS = { part: 0, surface: 0, "cell zone": 1, patch: 2, "face zone": 3 };
const ranks = new Map(
  [...page.groups].sort((a, b) => LAYERS[a.kind] - LAYERS[b.kind] || b.faces - a.faces).map((group, i) => [group, i]),
);

class Renderer {
  constructor(canvas) {
    this.canvas = canvas;
    const gl = canvas.getContext("webgl2", { antialias: true, alpha: true, preserveDrawingBuffer: true });
    if (!gl) throw new Error("This browser cannot draw with WebGL 2, or it is switched off.");
    this.gl = gl;
    this.colorProgram = this.program(COLOR_SHADER);
    this.pickProgram = this.program(PICK_SHADER);
    this.buffers = new Map();
    this.colors = gl.createTexture();
    this.pickTarget = gl.createFramebuffer();
  }

  program(fragmentSource) {
    const { gl } = this;
    const program = gl.createProgram();
    for (const [type, source] of [
      [gl.VERTEX_SHADER, VERTEX_SHADER],
      [gl.FRAGMENT_SHADER, fragmentSource],
    ]) {
      const shader = gl.createShader(type);
      gl.shaderSource(shader, source);
      gl.compileShader(shader);
      if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS)) throw new Error(gl.getShaderInfoLog(shader));
      gl.attachShader(program, shader);
    }
    ["position", "value", "sides"].forEach((name, i) => gl.bindAttribLocation(program, i, name));
    gl.linkProgram(program);
    if (!gl.getProgramParameter(program, gl.LINK_STATUS)) throw new Error(gl.getProgramInfoLog(program));
    const places = {};
    for (let i = 0; i < gl.getProgramParameter(program, gl.ACTIVE_UNIFORMS); ++i) {
      const { name } = gl.getActiveUniform(program, i);
      places[name] = gl.getUniformLocation(program, name);
    }
    return { program, places };
  }

  // Uploads the points of a surface, or its values, if they changed.
  upload(surface, { points, values }) {
    const { gl } = this;
    let entry = this.buffers.get(surface);
    if (!entry) {
      entry = { array: gl.createVertexArray(), buffers: [0, 1, 2].map(() => gl.createBuffer()) };
      this.buffers.set(surface, entry);
      this.fill(entry, 2, 1, surface.sides, gl.UNSIGNED_BYTE);
    }
    if (points) this.fill(entry, 0, 3, surface.cornerPositions(), gl.FLOAT);
    if (values) {
      gl.bindVertexArray(entry.array);
      gl.disableVertexAttribArray(1);
      if (surface.shown) this.fill(entry, 1, 1, surface.cornerValues(), gl.FLOAT);
    }
    gl.bindVertexArray(null);
  }

  fill(entry, place, size, data, type) {
    const { gl } = this;
    gl.bindVertexArray(entry.array);
    gl.bindBuffer(gl.ARRAY_BUFFER, entry.buffers[place]);
    gl.bufferData(gl.ARRAY_BUFFER, data, gl.DYNAMIC_DRAW);
    gl.enableVertexAttribArray(place);
    gl.vertexAttribPointer(place, size, type, false, 0, 0);
  }

  setColors(table) {
    const { gl } = this;
    gl.bindTexture(gl.TEXTURE_2D, this.colors);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, 256, 1, 0, gl.RGBA, gl.UNSIGNED_BYTE, table);
    gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MIN_FILTER, gl.LINEAR);
    gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_WRAP_S, gl.CLAMP_TO_EDGE);
  }

  aspect() {
    return this.canvas.width / Math.max(this.canvas.height, 1);
  }

  begin({ program, places }, look) {
    const { gl } = this;
    gl.useProgram(program);
    gl.uniformMatrix4fv(places.matrix, false, camera.matrix(this.aspect()));
    gl.uniform4fv(places.clip, look.clip);
    gl.enable(gl.DEPTH_TEST);
    gl.depthFunc(gl.LEQUAL);
    gl.enable(gl.POLYGON_OFFSET_FILL);
    gl.viewport(0, 0, this.canvas.width, this.canvas.height);
    return places;
  }

  drawSurface(surface) {
    const { gl } = this;
    const layer = LAYERS[surface.group.kind];
    // Some units for each rank, since the depths of triangles that are cut in another way differ by a few.
    gl.polygonOffset(-layer, -16 * Math.min(ranks.get(surface.group), 200));
    gl.bindVertexArray(this.buffers.get(surface).array);
    gl.drawArrays(gl.TRIANGLES, 0, 3 * surface.triangleCount);
  }

  // Draws surfaces. `look` has the range, the clip plane and whether edges are drawn.
  draw(surfaces, look) {
    const { gl } = this;
    gl.clearColor(0, 0, 0, 0);
    gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
    const places = this.begin(this.colorProgram, look);
    gl.bindTexture(gl.TEXTURE_2D, this.colors);
    gl.uniform3fv(places.toward, camera.axes().toward);
    gl.uniform3fv(places.missing, look.missing);
    gl.uniform1f(places.edgeStrength, look.edges ? 0.75 : 0);
    gl.uniform3fv(places.edgeColor, look.edgeColor);
    for (const surface of surfaces) {
      const base = surface.shown ? surface.shown.base : 0;
      gl.uniform2f(places.range, look.range[0] - base, look.range[1] - base);
      gl.uniform1i(places.hasValues, surface.shown ? 1 : 0);
      gl.uniform3fv(places.plain, look.plain);
      this.drawSurface(surface);
    }
    gl.bindVertexArray(null);
  }

  // The surface and triangle at a pixel, counted from the lower left corner, or null.
  pick(surfaces, look, x, y) {
    const { gl } = this;
    const { width, height } = this.canvas;
    const [color, depth] = [gl.createRenderbuffer(), gl.createRenderbuffer()];
    gl.bindFramebuffer(gl.FRAMEBUFFER, this.pickTarget);
    for (const [buffer, format, place] of [
      [color, gl.RGBA32UI, gl.COLOR_ATTACHMENT0],
      [depth, gl.DEPTH_COMPONENT24, gl.DEPTH_ATTACHMENT],
    ]) {
      gl.bindRenderbuffer(gl.RENDERBUFFER, buffer);
      gl.renderbufferStorage(gl.RENDERBUFFER, format, width, height);
      gl.framebufferRenderbuffer(gl.FRAMEBUFFER, place, gl.RENDERBUFFER, buffer);
    }
    gl.enable(gl.SCISSOR_TEST);
    gl.scissor(x, y, 1, 1);
    gl.clearBufferuiv(gl.COLOR, 0, [0, 0, 0, 0]);
    gl.clearBufferfv(gl.DEPTH, 0, [1]);
    const places = this.begin(this.pickProgram, look);
    surfaces.forEach((surface, i) => {
      gl.uniform1ui(places.surface, i);
      this.drawSurface(surface);
    });
    const found = new Uint32Array(4);
    gl.readPixels(x, y, 1, 1, gl.RGBA_INTEGER, gl.UNSIGNED_INT, found);
    gl.disable(gl.SCISSOR_TEST);
    gl.bindVertexArray(null);
    gl.bindFramebuffer(gl.FRAMEBUFFER, null);
    gl.deleteRenderbuffer(color);
    gl.deleteRenderbuffer(depth);
    return found[0] === 0 ? null : { surface: surfaces[found[0] - 1], triangle: found[1] };
  }
}
