// Debian's dompurify 2.4.1+dfsg+~2.4.0-2+deb12u1 refers to this variable where none of its name is declared, before it
// looks at the first node; so it throws for any markup. What is meant is a node without a depth yet. The bundler puts
// this in where a package refers to an undeclared variable of the name, and nowhere else.
export const shadowNode = {};
