// The studio's server. Addresses are relative: the page's own holds the secret.
export class ServerError extends Error {
  constructor(status, why) {
    super(why);
    this.status = status;
  }
}

async function checked(response) {
  if (response.ok) return response;
  let why = `${response.status}`;
  try {
    why = (await response.json()).error;
  } catch { /* no words came */ }
  throw new ServerError(response.status, why);
}

async function send(path, body, type) {
  try {
    return await checked(await fetch(path, {method: 'POST', body, headers: {'Content-Type': type}}));
  } catch (error) {
    if (error instanceof ServerError) throw error;
    throw new ServerError(0, '');
  }
}

export async function ask(path) {
  try {
    return await (await checked(await fetch(path))).json();
  } catch (error) {
    if (error instanceof ServerError) throw error;
    throw new ServerError(0, '');
  }
}

/** Null where a newer request took this one's place. */
export async function tell(path, object) {
  const response = await send(path, JSON.stringify(object), 'application/json');
  return response.status === 204 ? null : response.json();
}

export async function upload(path, bytes) {
  return (await send(path, bytes, 'application/octet-stream')).json();
}

/** {head, pixels}; null where a newer request took this one's place. */
async function unpacked(response) {
  if (response.status === 204) return null;
  const bytes = await response.arrayBuffer();
  const length = new DataView(bytes).getUint32(0, true);
  const head = JSON.parse(new TextDecoder().decode(new Uint8Array(bytes, 4, length)));
  return {head, pixels: new Uint8ClampedArray(bytes, 4 + length)};
}

export async function askPixels(path) {
  return unpacked(await checked(await fetch(path)));
}

export async function tellForPixels(path, object) {
  return unpacked(await send(path, JSON.stringify(object), 'application/json'));
}

/** The pixels as a canvas to draw from. */
export function canvasOf({head, pixels}) {
  const canvas = new OffscreenCanvas(head.width, head.height);
  // A copy: image data needs a buffer that begins with the pixels.
  canvas.getContext('2d').putImageData(new ImageData(new Uint8ClampedArray(pixels), head.width, head.height), 0, 0);
  return canvas;
}
