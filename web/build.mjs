// Builds the page into dist/, or its unit tests into dist-test/.
import { build } from "esbuild";
import { cpSync, mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { parse } from "marked";

const here = dirname(fileURLToPath(import.meta.url));

if (process.argv.includes("--tests")) {
  const out = join(here, "dist-test");
  rmSync(out, { recursive: true, force: true });
  await build({
    entryPoints: readdirSync(join(here, "test")).map((name) => join(here, "test", name)),
    outdir: out,
    outExtension: { ".js": ".mjs" },
    bundle: true,
    platform: "node",
    format: "esm",
    target: "node18",
    logLevel: "warning",
  });
} else {
  const out = join(here, "dist");
  rmSync(out, { recursive: true, force: true });
  mkdirSync(out);
  cpSync(join(here, "static"), out, { recursive: true });
  await build({
    entryPoints: { app: join(here, "src", "main.ts"), begin: join(here, "src", "begin.ts") },
    outdir: out,
    bundle: true,
    minify: true,
    format: "iife",
    target: "es2022",
    charset: "utf8",
    logLevel: "warning",
  });
  await build({
    entryPoints: [join(here, "style", "app.css")],
    outfile: join(out, "app.css"),
    bundle: true,
    external: ["/favicon.svg"],
    minify: true,
    charset: "utf8",
    logLevel: "warning",
  });
  const help = join(here, "..", "docs", "ajuda");
  mkdirSync(join(out, "ajuda"));
  for (const name of readdirSync(help).filter((one) => one.endsWith(".md"))) {
    writeFileSync(join(out, "ajuda", name.replace(/\.md$/, ".html")), parse(readFileSync(join(help, name), "utf8")));
  }
  // The desk sends what stands compressed beside a file to browsers that take it.
  for (const folder of [out, join(out, "ajuda")]) {
    for (const name of readdirSync(folder).filter((one) => /\.(html|js|css|svg)$/.test(one))) {
      writeFileSync(join(folder, `${name}.gz`), gzipSync(readFileSync(join(folder, name)), { level: 9 }));
    }
  }
}
