// The mails that the shop sent, as the mail sink kept them.
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";

/** The words of a header, RFC 2047: =?windows-1252?B?...?= and Q; neighbours are joined without the space between. */
function decodeHeader(text) {
  return text.replace(/\?=\s+=\?/g, "?==?").replace(/=\?([\w-]+)\?([BQ])\?(.*?)\?=/gi, (whole, charset, kind, coded) => {
    const bytes = kind.toUpperCase() === "B"
      ? Buffer.from(coded, "base64")
      : Buffer.from(coded.replace(/_/g, " ").replace(/=([0-9A-F]{2})/gi, (code, hex) =>
        String.fromCharCode(parseInt(hex, 16))), "latin1");
    return new TextDecoder(charset).decode(bytes);
  });
}

/** The parts of a mail of several, each as its bytes; a mail of one part is its own only one. */
function partsOf(raw, headers) {
  const boundary = /^multipart\/.*boundary="?([^";]+)/i.exec(headers["content-type"] ?? "")?.[1];
  return boundary === undefined ? null
    : raw.split(`--${boundary}`).slice(1, -1).map((part) => Buffer.from(part.replace(/^\n/, ""), "latin1"));
}

/** One mail: headers by lower-case name, and its text; that of the first part where it has several. */
export function parseMail(bytes) {
  const raw = bytes.toString("latin1").replace(/\r\n/g, "\n");
  const cut = raw.indexOf("\n\n");
  const headers = {};
  for (const line of raw.slice(0, cut).replace(/\n[ \t]+/g, " ").split("\n")) {
    const colon = line.indexOf(":");
    headers[line.slice(0, colon).toLowerCase()] = decodeHeader(line.slice(colon + 1).trim());
  }
  const body = raw.slice(cut + 2);
  const parts = partsOf(body, headers);
  if (parts !== null) {
    return { headers, text: parseMail(parts[0]).text };
  }
  const coding = (headers["content-transfer-encoding"] ?? "").toLowerCase();
  let content = Buffer.from(body, "latin1");
  if (coding === "base64") {
    content = Buffer.from(body, "base64");
  } else if (coding === "quoted-printable") {
    content = Buffer.from(body.replace(/=\n/g, "").replace(/=([0-9A-F]{2})/gi, (code, hex) =>
      String.fromCharCode(parseInt(hex, 16))), "latin1");
  }
  const charset = /charset="?([\w-]+)/i.exec(headers["content-type"] ?? "")?.[1] ?? "us-ascii";
  return { headers, text: new TextDecoder(charset, { fatal: true }).decode(content) };
}

/** The mails of the sink that hold a text, in the order in which they were sent. */
export function mailsWith(folder, text) {
  return readdirSync(folder).filter((name) => name.endsWith(".eml")).sort()
    .map((name) => parseMail(readFileSync(join(folder, name))))
    .filter((mail) => mail.text.includes(text) || mail.headers.subject?.includes(text));
}
